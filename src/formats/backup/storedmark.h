#pragma once

#include <array>
#include <string_view>

template <class Char>
inline constexpr std::array<Char, 6> storedMarkText = {'a', 'l', 'i', 'e', 'n', '|'};

// storedMark is in front of a stored name that is a full path, exact in case.
template <class Char>
inline constexpr std::basic_string_view<Char> storedMark{storedMarkText<Char>.data(),
                                                         storedMarkText<Char>.size()};
