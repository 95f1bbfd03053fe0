#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The case rule of the quick link file: A to Z alone have a lower case, whatever the locale.
// Portable.
template <class Char> constexpr Char asciilowerchar(Char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<Char>(c + ('a' - 'A')) : c;
}

inline std::string asciilower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), asciilowerchar<char>);
    return lower;
}

// asciiequal compares without regard to ASCII case.
template <class Char>
constexpr bool asciiequal(std::basic_string_view<Char> a, std::basic_string_view<Char> b) noexcept
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](Char left, Char right) {
        return asciilowerchar(left) == asciilowerchar(right);
    });
}
