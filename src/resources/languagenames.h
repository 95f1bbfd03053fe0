#pragma once

#include <windows.h>

#include <string_view>

inline constexpr LANGID englishUs = 1033; // what every installation has

// languageName is the name of a language, such as "en-US" for 1033 and the neutral "en" for 9.
//
// Returns: a view of static text; empty for an id without a name
std::wstring_view languageName(LANGID language) noexcept;

// defaultSublanguage is the language with the default sub-language of the same primary language.
constexpr LANGID defaultSublanguage(LANGID language) noexcept
{
    return static_cast<LANGID>((language & 0x3FF) | 0x400);
}

// neutralLanguage is the language's neutral parent: the primary language alone, but zh-Hant (31748)
// for Traditional Chinese, since the primary language 4 alone is the Simplified one.
constexpr LANGID neutralLanguage(LANGID language) noexcept
{
    switch (language) {
    case 1028:
    case 3076:
    case 5124:
    case 31748:
        return 31748;
    default:
        return language & 0x3FF;
    }
}
