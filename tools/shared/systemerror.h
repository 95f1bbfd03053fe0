#pragma once

#include <windows.h>

#include <string>

// errorText is the system's own text for an error of a platform call; a number if there is none.
// UTF-8.
std::string errorText(DWORD error);

// statusText is "0x80070005 ERROR_ACCESS_DENIED: Access denied." with as much as is known.
std::string statusText(HRESULT status);
