#include "formats/text/unicode.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace {

constexpr char32_t replacement = 0xFFFD;

char32_t takeCharacter(std::u16string_view& text)
{
    const char32_t first = text.front();
    text.remove_prefix(1);
    if (first < 0xD800 || first > 0xDFFF)
        return first;
    if (first > 0xDBFF || text.empty() || text.front() < 0xDC00 || text.front() > 0xDFFF)
        return replacement;
    const char32_t second = text.front();
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

// plainPrefix counts the ASCII characters in front, which is most often all.
template <class Char> size_t plainPrefix(std::basic_string_view<Char> text) noexcept
{
    const auto end = std::find_if(text.begin(), text.end(), [](Char c) {
        return static_cast<std::make_unsigned_t<Char>>(c) >= 0x80;
    });
    return static_cast<size_t>(end - text.begin());
}

} // namespace

char32_t takeCharacter(std::string_view& text)
{
    const auto first = static_cast<uint8_t>(text.front());
    text.remove_prefix(1);
    if (first < 0x80)
        return first;
    if (first < 0xC2 || first > 0xF4)
        return replacement;
    int more = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    char32_t character = first & (0x3F >> more);
    // The second octet's range shuts out overlong forms, surrogates and what lies past U+10FFFF.
    uint8_t low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    uint8_t high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    for (; more > 0; --more) {
        if (text.empty())
            return replacement;
        const auto octet = static_cast<uint8_t>(text.front());
        if (octet < low || octet > high)
            return replacement;
        text.remove_prefix(1);
        character = character << 6 | (octet & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return character;
}

std::u16string utf16FromUtf8(std::string_view text)
{
    const size_t plain = plainPrefix(text);
    std::u16string out;
    out.reserve(text.size());
    out.assign(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(plain));
    text.remove_prefix(plain);
    while (!text.empty()) {
        const char32_t c = takeCharacter(text);
        if (c < 0x10000) {
            out += static_cast<char16_t>(c);
        } else {
            out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        }
    }
    return out;
}

std::string utf8FromUtf16(std::u16string_view text)
{
    const size_t plain = plainPrefix(text);
    std::string out;
    out.reserve(text.size());
    out.resize(plain);
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(plain), out.begin(),
                   [](char16_t c) { return static_cast<char>(c); });
    text.remove_prefix(plain);
    while (!text.empty()) {
        const char32_t c = takeCharacter(text);
        if (c < 0x80) {
            out += static_cast<char>(c);
            continue;
        }
        const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        out += static_cast<char>(0xFF80 >> more | c >> (6 * more));
        for (int i = more - 1; i >= 0; --i)
            out += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
    }
    return out;
}
