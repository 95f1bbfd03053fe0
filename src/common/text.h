#pragma once

#include <string>
#include <string_view>

// utf8FromWide and wideFromUtf8 convert with code page 65001. Characters that can't be converted
// become the platform's replacement; embedded zeros are ordinary characters.
//
// Errors: std::bad_alloc, also for a text that the platform's calls can't take or fail to convert
// Source: WideCharToMultiByte, MultiByteToWideChar
std::string utf8FromWide(std::wstring_view text);
std::wstring wideFromUtf8(std::string_view text);

// wideFromAnsi converts from the active code page of the process.
std::wstring wideFromAnsi(std::string_view text);
