#pragma once

#include <windows.h>

#include <optional>
#include <string>

// Where the provider keeps what was set: text values below HKEY_CURRENT_USER, named by their keys.
inline constexpr wchar_t settingsKey[] = LR"(SOFTWARE\Veltrano\Settings)";

// What readtext does with references in a text of type REG_EXPAND_SZ.
inline constexpr DWORD expandedText = RRF_RT_REG_SZ;
inline constexpr DWORD rawText = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;

// expandreferences replaces references to the environment, as %APPDATA%.
std::wstring expandreferences(const wchar_t* text);

// readtext reads a text up to its first zero.
//
// flags:   expandedText or rawText, and a view
// Returns: nothing if the value is missing, is no text or can't be read
// Source:  RegGetValueW
std::optional<std::wstring> readtext(HKEY root, const wchar_t* key, const wchar_t* name,
                                     DWORD flags);

// writesetting stores a text below settingsKey, which is made when it is missing.
HRESULT writesetting(const wchar_t* name, const std::wstring& text);
