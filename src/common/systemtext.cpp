#include "common/systemtext.h"

#include "common/scoped.h"

std::wstring systemText(DWORD status, DWORD language)
{
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, status, language, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const CLocalMemory owner(text);
    std::wstring result(text ? text : L"", length);
    result.erase(result.find_last_not_of(L"\r\n") + 1);
    return result;
}
