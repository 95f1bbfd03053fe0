#pragma once

#include <string>
#include <string_view>
#include <vector>

using TextLines = std::vector<std::string>; // UTF-8, without line ends

// splitlines cuts a text at CR, LF and CRLF. Blank lines are dropped; a zero byte is an ordinary
// character.
//
// lines: cleared first
void splitlines(std::string_view text, TextLines& lines);
