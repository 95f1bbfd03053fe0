#include "common/registrytext.h"

LSTATUS queryText(HKEY key, const wchar_t* name, std::span<wchar_t> buffer,
                  noBytes_t noBytes) noexcept
{
    DWORD type = 0;
    auto size = static_cast<DWORD>(buffer.size_bytes());
    const LSTATUS result =
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &size);
    if (result != ERROR_SUCCESS)
        return result;
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ;
    const bool isWhole =
        size == 0 ? noBytes == noBytes_t::areText
                  : size % sizeof(wchar_t) == 0 && buffer[size / sizeof(wchar_t) - 1] == L'\0';
    return isText && isWhole ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}
