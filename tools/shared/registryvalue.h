#pragma once

#include <windows.h>

#include <string>
#include <vector>

// registryValue_t is one value as it stands in the registry.
struct registryValue_t {
    std::wstring name;
    DWORD type = REG_SZ;
    std::vector<BYTE> data;

    bool operator==(const registryValue_t&) const = default;
};

// readValue fills type and data of the value that has the name.
//
// Returns: the platform's error; ERROR_FILE_NOT_FOUND without such a value
LSTATUS readValue(HKEY key, registryValue_t& value);

// writeValue stores it as it is. Returns: the platform's error
LSTATUS writeValue(HKEY key, const registryValue_t& value);

// readValues reads all values of a key. Returns: the platform's error
LSTATUS readValues(HKEY key, std::vector<registryValue_t>& values);

// bytesOfText is a text as the registry stores it, with its terminating zero.
std::vector<BYTE> bytesOfText(const std::wstring& text);
