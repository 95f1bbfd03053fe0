#include "common/registry.h"

CRegistryKey openKey(HKEY root, const wchar_t* path, REGSAM access) noexcept
{
    CRegistryKey key;
    if (RegOpenKeyExW(root, path, 0, access, key.put()) != ERROR_SUCCESS)
        return {};
    return key;
}

bool isWholeText(DWORD type, std::span<const wchar_t> buffer, size_t size,
                 noBytes_t noBytes) noexcept
{
    if (type != REG_SZ && type != REG_EXPAND_SZ)
        return false;
    if (size == 0)
        return noBytes == noBytes_t::areText;
    return size % sizeof(wchar_t) == 0 && buffer[size / sizeof(wchar_t) - 1] == L'\0';
}

LSTATUS queryText(HKEY key, const wchar_t* name, std::span<wchar_t> buffer,
                  noBytes_t noBytes) noexcept
{
    DWORD type = 0;
    auto size = static_cast<DWORD>(buffer.size_bytes());
    const LSTATUS result =
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &size);
    if (result != ERROR_SUCCESS)
        return result;
    return isWholeText(type, buffer, size, noBytes) ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}
