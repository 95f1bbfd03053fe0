#include "tracecore/tracer.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tracecore {

std::wstring formatWideV(const wchar_t* format, va_list arguments)
{
    wchar_t text[512];
    va_list again;
    va_copy(again, arguments);
    const int length = _vsnwprintf(text, std::size(text), format, again);
    va_end(again);
    if (length >= 0)
        return std::wstring(text, static_cast<size_t>(length));
    va_copy(again, arguments);
    const int needed = _vscwprintf(format, again);
    va_end(again);
    std::wstring result(static_cast<size_t>(std::max(needed, 0)), L'\0');
    _vsnwprintf(result.data(), result.size(), format, arguments);
    return result;
}

std::wstring formatWide(const wchar_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::wstring result = formatWideV(format, arguments);
    va_end(arguments);
    return result;
}

} // namespace tracecore
