#include "plugin/errorframe.h"

#include "tracecore/realtracer.h"
#include "tracecore/tracer.h"

#include <comdef.h>

#include <cstdio>
#include <exception>

namespace {

// ClauseTag is the operation's name with the clause's suffix. A disabled tracer needs no text.
struct ClauseTag {
    char text[64] = {};
    ClauseTag(const char* operation, const char* clause) noexcept
    {
        if (!tracecore::traceState().traceDisabled)
            std::snprintf(text, sizeof text, "%s%s", operation, clause);
    }
};

} // namespace

HRESULT frameStatus(const char* operation) noexcept
{
    HRESULT status = E_FAIL;
    try {
        throw;
    } catch (const std::exception& exception) {
        status = tracecore::traceException(ClauseTag(operation, "[std]").text, exception);
    } catch (const _com_error& error) {
        status = error.Error();
        tracecore::traceIfFailed(ClauseTag(operation, "[com]").text, status);
    } catch (...) {
        tracecore::traceNote(ClauseTag(operation, "oo").text);
    }
    return status;
}
