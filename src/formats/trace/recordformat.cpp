#include "formats/trace/recordformat.h"

#include "formats/trace/textcipher.h"

#include <algorithm>

namespace tracecore {

namespace {

// Scrambles up to 4 bytes with one word of the block, and puts them into the word's first bytes.
void scrambleWord(uint8_t* bytes, size_t count, uint32_t& word) noexcept
{
    uint32_t mixed = word;
    for (size_t i = 0; i < count; ++i) {
        mixed ^= uint32_t{bytes[i]} << (8 * i);
        bytes[i] = static_cast<uint8_t>(mixed >> (8 * i));
    }
    word = mixed;
}

} // namespace

void scrambleText(uint8_t* buffer, size_t length) noexcept
{
    textCipher_t cipher;
    for (; length >= 8; buffer += 8, length -= 8) {
        cipher.encipher();
        scrambleWord(buffer, 4, cipher.y);
        scrambleWord(buffer + 4, 4, cipher.z);
    }
    if (length) {
        cipher.encipher();
        scrambleWord(buffer, std::min<size_t>(length, 4), cipher.y);
        scrambleWord(buffer + 4, length > 4 ? length - 4 : 0, cipher.z);
    }
}

} // namespace tracecore
