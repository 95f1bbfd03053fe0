#include "shared/jsonstring.h"

#include "formats/text/unicode.h"

#include <algorithm>

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

// appendEscaped appends text, in which plain bytes stay as they are.
void appendEscaped(std::string& out, std::string_view text, auto isPlain)
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
        appendCharacter(out, character, before.substr(0, before.size() - text.size()));
    }
}

} // namespace

void appendJsonString(std::string& out, std::string_view text, bool forPage)
{
    out += '"';
    appendEscaped(out, text, [forPage](char c) {
        return static_cast<signed char>(c) >= 0x20 && c != '"' && c != '\\' && c != 0x7F &&
               (c != '<' || !forPage);
    });
    out += '"';
}

std::string escapeSteering(std::string_view json)
{
    std::string out;
    out.reserve(json.size());
    appendEscaped(out, json, [](char c) { return static_cast<unsigned char>(c) < 0x7F; });
    return out;
}
