#pragma once

#include <string>
#include <string_view>

// utf16FromUtf8 and utf8FromUtf16 convert without the platform's help. What is no character, cut or
// overlong sequences and lone surrogates, becomes U+FFFD, one for each rejected run as Unicode
// (chapter 3, table 3-8) counts them. Embedded zeros are ordinary characters.
// Errors: std::bad_alloc
std::u16string utf16FromUtf8(std::string_view text);
std::string utf8FromUtf16(std::u16string_view text);

// takeCharacter takes one character off the front of UTF-8 text, which isn't empty. A broken
// sequence is taken up to the octet that broke it, and gives U+FFFD.
char32_t takeCharacter(std::string_view& text);

// isSteering is true for a character that acts on the display instead of being shown: controls, the
// separators of lines and paragraphs, and the marks that change the direction of what follows.
constexpr bool isSteering(char32_t c) noexcept
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x61C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}
