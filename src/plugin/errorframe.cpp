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

// A tracer that runs out of memory must not change the operation's status.
template <class Body> void quietly(Body body) noexcept
{
    try {
        body();
    } catch (...) {
    }
}

} // namespace

HRESULT frameStatus(const char* operation) noexcept
{
    HRESULT status = E_FAIL;
    try {
        throw;
    } catch (const std::exception& exception) {
        status = E_UNEXPECTED;
        quietly([&] { tracecore::traceException(ClauseTag(operation, "[std]").text, exception); });
    } catch (const _com_error& error) {
        status = error.Error();
        quietly([&] { tracecore::traceIfFailed(ClauseTag(operation, "[com]").text, status); });
    } catch (...) {
        quietly([&] { tracecore::traceStatus(ClauseTag(operation, "oo").text, 0); });
    }
    return status;
}
