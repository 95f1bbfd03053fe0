#include "formats/text/printable.h"

#include "formats/text/escape.h"

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

void appendCharacter(std::string& out, char32_t character, std::string_view bytes)
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

} // namespace

void appendPrintable(std::string& out, std::string_view text)
{
    appendEscaped(
        out, text, [](char c) { return c >= 0x20 && c < 0x7F; }, appendCharacter);
}

std::string printable(std::string_view text)
{
    std::string out;
    appendPrintable(out, text);
    return out;
}

std::string printableLines(std::string_view text)
{
    std::string out;
    for (;;) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (end != std::string_view::npos && line.ends_with('\r'))
            line.remove_suffix(1);
        appendPrintable(out, line);
        if (end == std::string_view::npos)
            return out;
        out += '\n';
        text.remove_prefix(end + 1);
    }
}
