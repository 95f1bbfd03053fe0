#include "formats/text/printable.h"

#include "formats/text/unicode.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace {

constexpr char32_t replacement = 0xFFFD;

std::string hexByte(unsigned byte)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    return {'\\', 'x', digits[byte >> 4 & 0xF], digits[byte & 0xF]};
}

std::string hexCharacter(unsigned character)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "\\u{%X}", character);
    return text.data();
}

void appendPrintable(std::string& out, char32_t character, std::string_view bytes)
{
    if (character == replacement && bytes != "\uFFFD") {
        for (const char byte : bytes)
            out += hexByte(static_cast<uint8_t>(byte));
    } else if (!isSteering(character)) {
        out += bytes;
    } else if (character == '\n') {
        out += "\\n";
    } else if (character == '\r') {
        out += "\\r";
    } else if (character == '\t') {
        out += "\\t";
    } else {
        out += character < 0x80 ? hexByte(character) : hexCharacter(character);
    }
}

std::string printable(std::string_view text, bool keepLines)
{
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        if (keepLines && (text.starts_with("\n") || text.starts_with("\r\n"))) {
            text.remove_prefix(text.find('\n') + 1);
            out += '\n';
            continue;
        }
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        appendPrintable(out, character, before.substr(0, before.size() - text.size()));
    }
    return out;
}

} // namespace

std::string printable(std::string_view text)
{
    return printable(text, false);
}

std::string printableLines(std::string_view text)
{
    return printable(text, true);
}
