#include "tracecore/tracer.h"

#include <cstdarg>
#include <cstdio>

namespace tracecore {

std::wstring formatWide(const wchar_t* format, ...)
{
    wchar_t text[512];
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = _vsnwprintf(text, std::size(text), format, arguments);
    va_end(arguments);
    std::wstring result;
    if (length >= 0) {
        result.assign(text, static_cast<size_t>(length));
    } else {
        va_copy(arguments, again);
        const int needed = _vscwprintf(format, arguments);
        va_end(arguments);
        if (needed > 0) {
            result.resize(static_cast<size_t>(needed));
            _vsnwprintf(result.data(), result.size(), format, again);
        }
    }
    va_end(again);
    return result;
}

} // namespace tracecore
