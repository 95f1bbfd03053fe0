#include "shared/jsonstring.h"

#include "formats/text/unicode.h"

#include <array>
#include <cstdio>

namespace {

// The escape of a character that JSON has a letter for; 0 if it has none.
char letterOf(char32_t character)
{
    switch (character) {
    case '"':
    case '\\':
        return static_cast<char>(character);
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

} // namespace

std::string jsonString(std::string_view text)
{
    std::string out = "\"";
    out.reserve(text.size() + 2);
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        if (const char letter = letterOf(character)) {
            out += '\\';
            out += letter;
        } else if (isSteering(character)) {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x",
                          static_cast<unsigned>(character));
            out += escape.data();
        } else if (character == 0xFFFD) {
            out += "\uFFFD";
        } else {
            out += before.substr(0, before.size() - text.size());
        }
    }
    return out += '"';
}
