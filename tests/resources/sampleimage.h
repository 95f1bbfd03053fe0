#pragma once

#include <cstdint>
#include <string>
#include <vector>

// sampleImage is the file of a small resource-only library, with the resources given in one
// section. The places of its parts are fixed, so that a test can forge one of them.
struct sampleResource_t {
    uint32_t type; // 0 stands for the name "MUI"
    uint32_t id;
    std::vector<uint8_t> data;
};

std::vector<uint8_t> sampleImage(const std::vector<sampleResource_t>& resources);

void put(std::vector<uint8_t>& bytes, size_t offset, uint32_t value, unsigned width);

inline constexpr size_t sampleOptionalHeader = 0x40 + 24;
inline constexpr size_t sampleResourceEntry =
    sampleOptionalHeader + 112 + 16; // in the data directory
inline constexpr size_t sampleSectionHeader = sampleOptionalHeader + 240;
inline constexpr size_t sampleRoot = 0x200; // the resource directory in the file
inline constexpr uint32_t sampleRootAddress = 0x1000;
