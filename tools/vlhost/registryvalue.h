#pragma once

#include "files.h"

#include <windows.h>

#include <string>

// registryValue_t is one value as it stands in the registry.
struct registryValue_t {
    std::wstring name;
    DWORD type = REG_SZ;
    bytes_t data;
};

// readValue fills type and data of the value that has the name.
//
// Returns: the platform's error; ERROR_FILE_NOT_FOUND without such a value
LSTATUS readValue(HKEY key, registryValue_t& value);

// writeValue stores it as it is. Returns: the platform's error
LSTATUS writeValue(HKEY key, const registryValue_t& value);

// bytesOfText is a text as the registry stores it, with its terminating zero.
bytes_t bytesOfText(const std::wstring& text);
