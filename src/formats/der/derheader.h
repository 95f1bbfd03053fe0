#pragma once

#include <cstddef>
#include <cstdint>

// The tags (X.680, X.690) that backup bytes are made of, and those of the other strings that are
// read as wide text.
namespace derTag {

inline constexpr uint8_t integer = 0x02;
inline constexpr uint8_t octetString = 0x04;
inline constexpr uint8_t utf8String = 0x0C;
inline constexpr uint8_t numericString = 0x12;
inline constexpr uint8_t printableString = 0x13;
inline constexpr uint8_t t61String = 0x14;
inline constexpr uint8_t videotexString = 0x15;
inline constexpr uint8_t ia5String = 0x16;
inline constexpr uint8_t graphicString = 0x19;
inline constexpr uint8_t visibleString = 0x1A;
inline constexpr uint8_t bmpString = 0x1E;
inline constexpr uint8_t sequence = 0x30;

} // namespace derTag

// derHeaderSize gives the size of tag and length, in their minimal form, in front of that many
// content octets.
constexpr size_t derHeaderSize(size_t length) noexcept
{
    size_t octets = 2;
    for (size_t rest = length < 0x80 ? 0 : length; rest != 0; rest >>= 8)
        ++octets;
    return octets;
}

// derWriteHeader stores tag and length, which take derHeaderSize octets.
// Returns: their end, where the content begins
constexpr uint8_t* derWriteHeader(uint8_t* out, uint8_t tag, size_t length) noexcept
{
    *out++ = tag;
    size_t octets = derHeaderSize(length) - 2;
    *out++ = static_cast<uint8_t>(octets == 0 ? length : 0x80 | octets);
    while (octets-- > 0)
        *out++ = static_cast<uint8_t>(length >> (8 * octets));
    return out;
}

// derRepeatsSign is true if an integer's first octet only repeats the sign of the next one, so that
// the shortest form leaves it out.
constexpr bool derRepeatsSign(uint8_t first, uint8_t next) noexcept
{
    return first == ((next & 0x80) != 0 ? 0xFF : 0x00);
}
