#include "formats/trace/recordjudge.h"

#include "formats/text/unicode.h"
#include "formats/trace/recordformat.h"

#include <algorithm>

namespace tracecore {

namespace {

constexpr size_t firstGlance =
    32; // whole blocks; chance bytes give themselves away within a few characters

constexpr size_t longestStatus = 12; // with its sign and the blank after it

constexpr std::string_view replacement = "\uFFFD";

// takeValid takes one character off the front of text, or a run of bytes that is none.
bool takeValid(std::string_view& text, char32_t& character)
{
    const bool written = text.starts_with(replacement); // as such in the text
    character = takeCharacter(text);
    return character != 0xFFFD || written;
}

bool isTextCharacter(char32_t c) noexcept
{
    return c >= 0x20 || c == '\t' || c == '\n' || c == '\r';
}

// plainAscii gives the length of the run of U+0020 to U+007F that the text begins with.
size_t plainAscii(std::string_view text) noexcept
{
    const auto isPlain = [](char c) { return static_cast<signed char>(c) >= 0x20; };
    return static_cast<size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
}

bool startsWithStatus(std::string_view text) noexcept
{
    if (text.starts_with('-'))
        text.remove_prefix(1);
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    return digits > 0 && digits <= 10 && digits < text.size() && text[digits] == ' ';
}

} // namespace

size_t textLength(std::span<const uint8_t> record) noexcept
{
    return static_cast<size_t>(record[5] | record[6] << 8);
}

bool mayBeFramed(std::span<const uint8_t> record) noexcept
{
    const levelInfo_t* const level = levelOf(static_cast<char>(record[4]));
    return level && (!level->shape || level->shape->size() == textLength(record));
}

void unscramble(std::span<const uint8_t> scrambled, std::string& plain, size_t from)
{
    static_assert(sizeof(char) == sizeof(uint8_t));
    plain.resize(scrambled.size());
    unscrambleText(scrambled.data(), scrambled.size(), reinterpret_cast<uint8_t*>(plain.data()),
                   from);
}

std::string validUtf8(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        std::string_view rest = bytes;
        char32_t character = 0;
        const bool valid = takeValid(rest, character);
        const size_t taken = bytes.size() - rest.size();
        if (valid)
            text += bytes.substr(0, taken);
        for (size_t i = 0; !valid && i < taken; ++i)
            text += replacement;
        bytes = rest;
    }
    return text;
}

look_t recordJudge_t::look(std::span<const uint8_t> bytes, bool ended, size_t textLimit)
{
    const levelInfo_t* const level =
        bytes.size() > 4 ? levelOf(static_cast<char>(bytes[4])) : nullptr;
    if (bytes.size() > 4 && !level)
        return look_t::no;
    if (!level || bytes.size() < recordHeaderSize)
        return ended ? look_t::cut : look_t::more;
    if (!mayBeFramed(bytes))
        return look_t::no;
    const size_t length = textLength(bytes);
    const auto text = bytes.subspan(recordHeaderSize);
    if (!isSaneText(text.first(std::min({length, text.size(), textLimit})), *level))
        return look_t::no;
    if (text.size() < length)
        return ended ? look_t::cut : look_t::more;
    return length >= 8 ? look_t::sure : look_t::weak;
}

// A character cut at the end is sane: a length that wrapped may end within one.
bool recordJudge_t::isSaneUtf8()
{
    std::string_view text = m_text;
    for (text.remove_prefix(plainAscii(text)); !text.empty();
         text.remove_prefix(plainAscii(text))) {
        const auto lead = static_cast<uint8_t>(text.front());
        char32_t character = 0;
        m_valid = takeValid(text, character);
        if (!m_valid)
            return text.empty() && lead >= 0xC2 && lead <= 0xF4;
        if (!isTextCharacter(character))
            return false;
    }
    m_valid = true;
    return true;
}

// scrambled may be the beginning of a text.
bool recordJudge_t::isSaneText(std::span<const uint8_t> scrambled, const levelInfo_t& level)
{
    size_t plain = 0;
    if (scrambled.size() > firstGlance) {
        plain = firstGlance;
        unscramble(scrambled.first(plain), m_text);
        if (!isSaneUtf8())
            return false;
    }
    unscramble(scrambled, m_text, plain);
    if (!isSaneUtf8())
        return false;
    if (level.shape)
        return m_text.size() < level.shape->size() || hasShape(m_text, *level.shape);
    return level.use != levelUse_t::status || m_text.size() < longestStatus ||
           startsWithStatus(m_text);
}

} // namespace tracecore
