#pragma once

#include <windows.h>

#include <string>

// The link to the settings provider, VloSet.dll (settingsprovider.h). The library is loaded at
// first use and stays until the module ends; a load that failed is not tried again. Without it
// every key reads as its default. Nothing is remembered here: each read goes to the provider, on
// the caller's thread. Nothing here raises.

// settings_query reads one setting.
//
// value:   left as it was on failure
// Returns: the provider's status; 0x80004001 without a provider, 0x8007000E out of memory, the code
//          of a COM error inside the provider, 0x8000FFFF for anything else that it raises
HRESULT settings_query(const std::wstring& key, std::wstring& value);

// settings_set writes one setting.
//
// Returns: as settings_query. A failure is traced as an error: 0x80070002, a key that the provider
//          doesn't know, as a damaged installation
HRESULT settings_set(const std::wstring& key, const std::wstring& value);

// settings_getstring gives defaultValue when the query fails; the value itself may be empty.
std::wstring settings_getstring(const std::wstring& key, const std::wstring& defaultValue);

// settings_getpath is settings_getstring with an empty default.
std::wstring settings_getpath(const std::wstring& key);

// settings_getbool reads the setting as a decimal number: 1 and above is true, below 0 is false.
// Zero, and with it any text that is no number, gives defaultValue.
bool settings_getbool(const std::wstring& key, bool defaultValue);
