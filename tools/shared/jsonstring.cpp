#include "shared/jsonstring.h"

#include "formats/text/escape.h"

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

void appendJsonString(std::string& out, std::string_view text, bool forPage)
{
    out += '"';
    appendEscaped(
        out, text,
        [forPage](char c) {
            return static_cast<signed char>(c) >= 0x20 && c != '"' && c != '\\' && c != 0x7F &&
                   (c != '<' || !forPage);
        },
        appendCharacter);
    out += '"';
}

std::string escapeSteering(std::string_view json)
{
    std::string out;
    out.reserve(json.size());
    appendEscaped(
        out, json, [](char c) { return static_cast<unsigned char>(c) < 0x7F; }, appendCharacter);
    return out;
}
