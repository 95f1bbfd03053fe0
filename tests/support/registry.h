#pragma once

#include <windows.h>

#include <string>

// setValue writes a value into the registry, of the text with its end or of its first bytes. It
// makes the key too.
inline void setValue(HKEY root, const std::wstring& key, const wchar_t* name,
                     const std::wstring& text, DWORD type = REG_SZ, DWORD size = 0)
{
    const auto whole = static_cast<DWORD>(text.size() * 2 + 2);
    RegSetKeyValueW(root, key.c_str(), name, type, text.c_str(), size ? size : whole);
}
