#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tracecore {

// textCipher_t is the block cipher of scrambleText and unscrambleText: 64-bit cipher feedback,
// restarted for each text. Its block holds the key stream after encipher(); the next one grows
// from the scrambled bytes put in its place.
class textCipher_t
{
public:
    textCipher_t() noexcept
    {
        for (size_t i = 0; i < m_key.size(); ++i)
            m_key[i] = keyMask[i] ^ maskedKey[i];
    }

    // The right shifts keep the sign, unlike the published algorithm. Intended: files depend on it.
    void encipher() noexcept
    {
        uint32_t sum = 0;
        for (int round = 0; round < 32; ++round) {
            sum += 0x9E3779B9;
            y += ((z << 4) + m_key[0]) ^ (z + sum) ^ (signedShift(z) + m_key[1]);
            z += ((y << 4) + m_key[2]) ^ (y + sum) ^ (signedShift(y) + m_key[3]);
        }
    }

    uint32_t y = 0x3C5A9D17;
    uint32_t z = 0xE86B40F2;

private:
    static uint32_t signedShift(uint32_t value) noexcept
    {
        return static_cast<uint32_t>(static_cast<int32_t>(value) >> 5);
    }

    // The key lies nowhere in the program as such: volatile keeps the words from being joined at
    // build time.
    static inline const volatile uint32_t keyMask[4] = {0xD21E6BC4, 0x3A90F5E7, 0x865D0B39,
                                                        0x4FC7912A};
    static constexpr std::array<uint32_t, 4> maskedKey = {
        0x6B7D1A35 ^ 0xD21E6BC4, 0xC2E94F08 ^ 0x3A90F5E7, 0x1F53B8D6 ^ 0x865D0B39,
        0x94A0E72C ^ 0x4FC7912A};

    std::array<uint32_t, 4> m_key;
};

} // namespace tracecore
