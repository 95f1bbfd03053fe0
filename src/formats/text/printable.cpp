#include "formats/text/printable.h"

#include "formats/text/unicode.h"

#include <algorithm>
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

void append(std::string& out, std::string_view text, bool keepLines)
{
    while (!text.empty()) {
        const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F; };
        const auto end = std::ranges::find_if_not(text, isPlain);
        const auto run = static_cast<size_t>(end - text.begin());
        out += text.substr(0, run);
        text.remove_prefix(run);
        if (text.empty())
            return;
        if (keepLines && (text.starts_with("\n") || text.starts_with("\r\n"))) {
            text.remove_prefix(text.find('\n') + 1);
            out += '\n';
            continue;
        }
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        appendCharacter(out, character, before.substr(0, before.size() - text.size()));
    }
}

} // namespace

void appendPrintable(std::string& out, std::string_view text)
{
    append(out, text, false);
}

std::string printable(std::string_view text)
{
    std::string out;
    append(out, text, false);
    return out;
}

std::string printableLines(std::string_view text)
{
    std::string out;
    append(out, text, true);
    return out;
}
