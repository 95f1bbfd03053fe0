#pragma once

#include <span>
#include <string>
#include <string_view>

// SettingDef is one key that the provider knows, with what answers while no text is stored: a text,
// which may hold references such as %APPDATA%, or a function.
struct SettingDef {
    const wchar_t* key;
    const wchar_t* text;
    std::wstring (*found)() = nullptr; // in place of text
};

std::span<const SettingDef> allsettings() noexcept;

// findsetting gives the setting of a key, exact in case; null for a key that isn't one.
const SettingDef* findsetting(std::wstring_view key) noexcept;

// defaulttext is the setting's text while none is stored.
//
// expanded: false keeps the references. With true, a text whose variable is not set is empty, so
//           that no folder with the reference in its name is ever made
std::wstring defaulttext(const SettingDef& setting, bool expanded);
