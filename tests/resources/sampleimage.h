#pragma once

#include <cstdint>
#include <utility>
#include <vector>

struct sampleResource_t {
    uint32_t type; // 0 stands for the name "MUI"
    uint32_t id;
    std::vector<uint8_t> data;
};

inline constexpr size_t sampleOptionalHeader = 0x40 + 24;
inline constexpr size_t sampleResourceEntry =
    sampleOptionalHeader + 112 + 16; // in the data directory
inline constexpr size_t sampleSectionHeader = sampleOptionalHeader + 240;
inline constexpr size_t sampleRoot = 0x200; // the resource directory in the file
inline constexpr uint32_t sampleRootAddress = 0x1000;

inline void put(std::vector<uint8_t>& bytes, size_t offset, uint32_t value, unsigned width)
{
    for (unsigned i = 0; i < width; ++i)
        bytes.at(offset + i) = static_cast<uint8_t>(value >> (8 * i));
}

inline std::vector<uint8_t> sampleResourceSection(const std::vector<sampleResource_t>& resources)
{
    constexpr uint32_t highBit = 0x80000000;
    std::vector<uint8_t> section(16 + resources.size() * 8);
    // Appends a directory with one entry, which is all that a name or a language has here.
    const auto appendDirectory = [&section](uint32_t name, size_t target) {
        const size_t at = section.size();
        section.resize(at + 24);
        put(section, at + 14, 1, 2);
        put(section, at + 16, name, 4);
        put(section, at + 20, static_cast<uint32_t>(target), 4);
    };
    put(section, 14, static_cast<uint32_t>(resources.size()), 2);
    const auto nameOffset = static_cast<uint32_t>(section.size());
    for (const char unit : {'\3', '\0', 'M', '\0', 'U', '\0', 'I', '\0'})
        section.push_back(static_cast<uint8_t>(unit));
    for (size_t i = 0; i < resources.size(); ++i) {
        const auto start = static_cast<uint32_t>(section.size());
        const auto& [type, id, data] = resources[i];
        put(section, 16 + i * 8, type ? type : highBit | nameOffset, 4);
        put(section, 20 + i * 8, highBit | start, 4);
        appendDirectory(id, highBit | (start + 24));
        appendDirectory(0x409, start + 48);
        section.resize(start + 64);
        put(section, start + 48, sampleRootAddress + start + 64, 4);
        put(section, start + 52, static_cast<uint32_t>(data.size()), 4);
        section.insert(section.end(), data.begin(), data.end());
    }
    return section;
}

// sampleImage is the file of a small resource-only library, with the resources given in one section. The places of
// its parts are fixed, so that a test can forge one of them.
inline std::vector<uint8_t> sampleImage(const std::vector<sampleResource_t>& resources)
{
    const std::vector<uint8_t> section = sampleResourceSection(resources);
    const auto size = static_cast<uint32_t>(section.size());
    std::vector<uint8_t> file(sampleRoot);
    const auto fields = [&file](size_t at, std::initializer_list<uint32_t> values) {
        for (const uint32_t value : values)
            put(file, std::exchange(at, at + 4), value, 4);
    };
    // The headers: sections, sizes of the optional one and of all, directories.
    fields(0, {0x5A4D});
    fields(0x3C, {0x40, 0x4550, 0x10000});
    fields(0x40 + 20, {240});
    fields(sampleOptionalHeader, {0x20B});
    fields(sampleOptionalHeader + 60, {sampleRoot});
    fields(sampleOptionalHeader + 108, {16});
    fields(sampleResourceEntry, {sampleRootAddress, size});
    fields(sampleSectionHeader + 8, {size, sampleRootAddress, size, sampleRoot});
    file.insert(file.end(), section.begin(), section.end());
    return file;
}
