#include "shared/registryvalue.h"

namespace {

constexpr size_t longestName = 16384; // characters of a value's name, its zero included

} // namespace

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

LSTATUS readValues(HKEY key, std::vector<registryValue_t>& values)
{
    std::wstring name(longestName, L'\0');
    for (DWORD index = 0;; ++index) {
        auto length = static_cast<DWORD>(name.size());
        LSTATUS error =
            RegEnumValueW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (error == ERROR_NO_MORE_ITEMS)
            return ERROR_SUCCESS;
        registryValue_t value{name.substr(0, length), REG_SZ, {}};
        if (error == ERROR_SUCCESS)
            error = readValue(key, value);
        if (error == ERROR_FILE_NOT_FOUND)
            continue; // gone meanwhile
        if (error != ERROR_SUCCESS)
            return error;
        values.push_back(std::move(value));
    }
}

std::vector<BYTE> bytesOfText(const std::wstring& text)
{
    const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
    return {first, first + (text.size() + 1) * sizeof(wchar_t)};
}
