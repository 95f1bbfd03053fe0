#include "tracecore/tracer.h"

#include <cstdarg>
#include <cwchar>

namespace tracecore {

bool traceActive() noexcept
{
    return false;
}

void traceEnter(const char*) {}
void traceLeave() {}
void traceText(const char*) {}
void traceFormat(int, const char*, ...) {}
void traceStatus(const char*, HRESULT) {}
void traceStatusW(const std::wstring&, HRESULT) {}
void traceLastError(const std::wstring&) {}
void traceIfFailed(const char*, HRESULT) {}
void traceNote(const char*) {}
void traceNoteW(const std::wstring&) {}
void traceNotePair(const char*, const char*) {}
void traceWrite(char, const std::wstring&) {}

HRESULT traceException(const char*, const std::exception&)
{
    return E_UNEXPECTED;
}

std::wstring formatWide(const wchar_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    wchar_t text[1024] = {};
    _vsnwprintf(text, 1023, format, arguments);
    va_end(arguments);
    return text;
}

} // namespace tracecore
