#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

struct sampleResource_t {
    uint32_t type; // 0 stands for the name "MUI"
    uint32_t id;
    std::vector<uint8_t> data;
};

inline constexpr size_t sampleOptionalHeader = 0x40 + 24;
inline constexpr size_t sampleResourceEntry = sampleOptionalHeader + 112 + 16;
inline constexpr size_t sampleSectionHeader = sampleOptionalHeader + 240;
inline constexpr size_t sampleRoot = 0x200; // the resource directory in the file
inline constexpr uint32_t sampleRootAddress = 0x1000;

// put writes 32-bit numbers one after the other.
inline void put(std::vector<uint8_t>& bytes, size_t offset, std::initializer_list<uint32_t> values)
{
    for (const uint32_t value : values)
        for (unsigned i = 0; i < 4; ++i)
            bytes.at(offset++) = static_cast<uint8_t>(value >> (8 * i));
}

// sampleImage is the file of a small resource-only library, with the resources given in one
// section. The places of its parts are fixed, so that a test can forge one of them: after the root
// directory and the name there are 64 bytes for each resource, a directory with its id, one with its
// language and the place of its data.
inline std::vector<uint8_t> sampleImage(const std::vector<sampleResource_t>& resources)
{
    constexpr uint32_t highBit = 0x80000000, oneEntry = 0x10000;
    const auto count = static_cast<uint32_t>(resources.size());
    const uint32_t name = 16 + count * 8;
    std::vector<uint8_t> file(sampleRoot + name + 8 + count * 64);
    put(file, sampleRoot + 12, {count << 16});
    put(file, sampleRoot + name, {'M' << 16 | 3, 'I' << 16 | 'U'});
    for (uint32_t i = 0; i < count; ++i) {
        const auto& [type, id, data] = resources[i];
        const uint32_t start = name + 8 + i * 64;
        put(file, sampleRoot + 16 + i * 8, {type ? type : highBit | name, highBit | start});
        put(file, sampleRoot + start + 12, {oneEntry, id, highBit | (start + 24)});
        put(file, sampleRoot + start + 24 + 12, {oneEntry, 0x409, start + 48});
        const auto place = static_cast<uint32_t>(file.size() - sampleRoot);
        put(file, sampleRoot + start + 48,
            {sampleRootAddress + place, static_cast<uint32_t>(data.size())});
        file.insert(file.end(), data.begin(), data.end());
    }
    // The headers: sections, sizes of the optional one and of all, directories.
    const auto size = static_cast<uint32_t>(file.size() - sampleRoot);
    put(file, 0, {0x5A4D});
    put(file, 0x3C, {0x40, 0x4550, 0x10000});
    put(file, 0x40 + 20, {240});
    put(file, sampleOptionalHeader, {0x20B});
    put(file, sampleOptionalHeader + 60, {sampleRoot});
    put(file, sampleOptionalHeader + 108, {16});
    put(file, sampleResourceEntry, {sampleRootAddress, size});
    put(file, sampleSectionHeader + 8, {size, sampleRootAddress, size, sampleRoot});
    return file;
}
