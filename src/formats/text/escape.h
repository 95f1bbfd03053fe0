#pragma once

#include "formats/text/unicode.h"

#include <algorithm>
#include <string>
#include <string_view>

// appendEscaped appends text with some of its characters in another form; which, and in what form, its callers say.
//
// text:    UTF-8, or any bytes
// isPlain: of a byte, true for an ASCII character that stays; whole runs of them are copied
// escape:  appends any other character: gets out, the character as takeCharacter gives it, and its bytes
void appendEscaped(std::string& out, std::string_view text, auto isPlain, auto escape)
{
    while (!text.empty()) {
        const auto end = std::ranges::find_if_not(text, isPlain);
        const auto run = static_cast<size_t>(end - text.begin());
        out += text.substr(0, run);
        text.remove_prefix(run);
        if (text.empty())
            return;
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        escape(out, character, before.substr(0, before.size() - text.size()));
    }
}
