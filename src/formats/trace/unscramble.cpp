#include "formats/trace/recordformat.h"
#include "formats/trace/textcipher.h"

#include <algorithm>

namespace tracecore {

namespace {

// Unscrambles up to 4 bytes with one word of the block, and puts what was scrambled into the word's
// first bytes.
void unscrambleWord(uint8_t* bytes, size_t count, uint32_t& word) noexcept
{
    for (size_t i = 0; i < count; ++i) {
        const uint32_t plain = bytes[i] ^ (word >> (8 * i) & 0xFF);
        word ^= plain << (8 * i);
        bytes[i] = static_cast<uint8_t>(plain);
    }
}

} // namespace

void unscrambleText(uint8_t* buffer, size_t length) noexcept
{
    textCipher_t cipher;
    while (length > 0) {
        cipher.encipher();
        const size_t count = std::min<size_t>(length, 8);
        unscrambleWord(buffer, std::min<size_t>(count, 4), cipher.y);
        if (count > 4)
            unscrambleWord(buffer + 4, count - 4, cipher.z);
        buffer += count;
        length -= count;
    }
}

} // namespace tracecore
