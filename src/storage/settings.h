#pragma once

#include <string>

#include <windows.h>

// The link to the settings provider, VloSet.dll: it is loaded at first use and stays until the module ends.
// Without it every key reads as its default. Nothing here raises.

HRESULT settings_query(const std::wstring& key, std::wstring& value);
HRESULT settings_set(const std::wstring& key, const std::wstring& value);
std::wstring settings_getstring(const std::wstring& key, const std::wstring& defaultValue);
std::wstring settings_getpath(const std::wstring& key);
bool settings_getbool(const std::wstring& key, bool defaultValue);
