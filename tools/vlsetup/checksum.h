#pragma once

#include <windows.h>

#include <string>

// checksumOf is the SHA-256 of an open file, from where it stands to its end, in hexadecimal.
//
// path:   of the file, for the message of a failure
// Errors: CToolError
std::string checksumOf(HANDLE file, const std::wstring& path);
