#include "shared/hextext.h"

#include <stdexcept>

namespace {

constexpr std::string_view digits = "0123456789abcdef";

} // namespace

std::string hexText(std::span<const uint8_t> bytes)
{
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (const uint8_t one : bytes) {
        hex += digits[one >> 4];
        hex += digits[one & 15];
    }
    return hex;
}

std::vector<uint8_t> bytesOfHex(std::string_view hex)
{
    std::vector<uint8_t> bytes(hex.size() / 2);
    for (size_t i = 0; i < hex.size(); ++i) {
        const size_t digit = digits.find(hex[i]);
        if (digit == std::string_view::npos || hex.size() % 2 != 0)
            throw std::invalid_argument("no hexadecimal text");
        bytes[i / 2] = static_cast<uint8_t>(size_t{bytes[i / 2]} << 4 | digit);
    }
    return bytes;
}
