#pragma once

#include <string>
#include <string_view>

// printable gives text that can't control a terminal, whoever wrote it. These are written out:
//
//     \n \r \t         the line feed, the carriage return, the tab
//     \x1B             every other control character below U+0020, and U+007F
//     \xFF             a byte that belongs to no UTF-8 character
//     \u{9B} \u{202E}  every other character of isSteering
//
// A backslash stays as it is, so that paths can be read; what a program reads is the JSON output.
//
// text: UTF-8, or any bytes
std::string printable(std::string_view text);
void appendPrintable(std::string& out, std::string_view text);

// printableLines does the same for text of several lines: LF and CR LF stay, as LF.
std::string printableLines(std::string_view text);
