#include "registryvalue.h"

LSTATUS readValue(HKEY key, registryValue_t& value)
{
    DWORD size = 0;
    LSTATUS error = RegQueryValueExW(key, value.name.c_str(), nullptr, &value.type, nullptr, &size);
    while (error == ERROR_SUCCESS || error == ERROR_MORE_DATA) {
        value.data.resize(size + 1); // never empty, so that a pointer is there
        size = static_cast<DWORD>(value.data.size());
        error = RegQueryValueExW(key, value.name.c_str(), nullptr, &value.type, value.data.data(),
                                 &size);
        if (error == ERROR_SUCCESS) {
            value.data.resize(size);
            break;
        }
    }
    return error;
}

LSTATUS writeValue(HKEY key, const registryValue_t& value)
{
    return RegSetValueExW(key, value.name.c_str(), 0, value.type, value.data.data(),
                          static_cast<DWORD>(value.data.size()));
}

bytes_t bytesOfText(const std::wstring& text)
{
    const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
    return {first, first + (text.size() + 1) * sizeof(wchar_t)};
}
