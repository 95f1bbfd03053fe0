#include "formats/trace/recordformat.h"
#include "formats/trace/textcipher.h"

namespace tracecore {

namespace {

uint32_t loadWord(const uint8_t* bytes) noexcept
{
    return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

void storeWord(uint8_t* bytes, uint32_t word) noexcept
{
    for (unsigned i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(word >> (8 * i));
}

} // namespace

void unscrambleText(const uint8_t* scrambled, size_t length, uint8_t* plain, size_t from) noexcept
{
    textCipher_t cipher;
    if (from > 0) {
        cipher.y = loadWord(scrambled + from - 8);
        cipher.z = loadWord(scrambled + from - 4);
    }
    for (; length - from >= 8; from += 8) {
        cipher.encipher();
        const uint32_t y = loadWord(scrambled + from);
        const uint32_t z = loadWord(scrambled + from + 4);
        storeWord(plain + from, cipher.y ^ y);
        storeWord(plain + from + 4, cipher.z ^ z);
        cipher.y = y;
        cipher.z = z;
    }
    if (from == length)
        return;
    cipher.encipher();
    uint8_t key[8];
    storeWord(key, cipher.y);
    storeWord(key + 4, cipher.z);
    for (size_t i = from; i < length; ++i)
        plain[i] = scrambled[i] ^ key[i - from];
}

void unscrambleText(uint8_t* buffer, size_t length) noexcept
{
    unscrambleText(buffer, length, buffer, 0);
}

} // namespace tracecore
