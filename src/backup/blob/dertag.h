#pragma once

#include <cstdint>

// The tags (X.690, X.680) that backup bytes are made of, and the string tags that a reader of wide
// text takes too.
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
