#include "textout.h"

#include "formats/text/unicode.h"

#include <algorithm>
#include <cstdint>

namespace vltrace {

namespace {

void appendEscape(std::string& out, char32_t character)
{
    static constexpr char digits[] = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += digits[character >> shift & 0xF];
}

void appendCharacter(std::string& out, char32_t character, std::string_view bytes)
{
    switch (character) {
    case '"':
    case '\\':
        out += '\\';
        out += bytes;
        break;
    case '\b':
        out += "\\b";
        break;
    case '\f':
        out += "\\f";
        break;
    case '\n':
        out += "\\n";
        break;
    case '\r':
        out += "\\r";
        break;
    case '\t':
        out += "\\t";
        break;
    case 0xFFFD:
        out += "\uFFFD";
        break;
    default:
        if (isSteering(character) || character == '<')
            appendEscape(out, character);
        else
            out += bytes;
    }
}

} // namespace

void appendJson(std::string& out, std::string_view text, bool forPage)
{
    const auto isPlain = [forPage](char c) {
        return static_cast<signed char>(c) >= 0x20 && c != '"' && c != '\\' && c != 0x7F &&
               (c != '<' || !forPage);
    };
    out += '"';
    while (!text.empty()) {
        const auto end = std::ranges::find_if_not(text, isPlain);
        const auto run = static_cast<size_t>(end - text.begin());
        out += text.substr(0, run);
        text.remove_prefix(run);
        if (text.empty())
            break;
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        appendCharacter(out, character, before.substr(0, before.size() - text.size()));
    }
    out += '"';
}

} // namespace vltrace
