#pragma once

#include <string>
#include <string_view>

// fileNamePart gives what follows the last \, / or : of a path, or else the whole text.
//
// path: a text of any character type, a loan
template <class Text>
std::basic_string_view<typename Text::value_type> fileNamePart(const Text& path) noexcept
{
    constexpr typename Text::value_type separators[] = {'\\', '/', ':'};
    const std::basic_string_view<typename Text::value_type> all(path);
    return all.substr(all.find_last_of(separators, all.npos, std::size(separators)) + 1);
}

// folderPart gives a path up to its last \ or /, with it; empty when there is none.
template <class Text>
std::basic_string_view<typename Text::value_type> folderPart(const Text& path) noexcept
{
    constexpr typename Text::value_type separators[] = {'\\', '/'};
    const std::basic_string_view<typename Text::value_type> all(path);
    return all.substr(0, all.find_last_of(separators, all.npos, std::size(separators)) + 1);
}
