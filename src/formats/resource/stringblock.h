#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// Numbered strings lie in blocks of sixteen: the resource "block" holds the strings with the ids
// (block - 1) * 16 to (block - 1) * 16 + 15. A block is sixteen entries, each a 16-bit
// little-endian count of UTF-16 units and then the units, with no terminator.

inline constexpr unsigned stringsPerBlock = 16;

// stringBlockNumber is the number of the block that holds a string, not yet cut to the 16 bits of a
// resource id.
constexpr uint32_t stringBlockNumber(uint32_t id) noexcept
{
    return (id >> 4) + 1;
}

// stringBlockIndex is the place of a string in its block, 0 to 15.
constexpr unsigned stringBlockIndex(uint32_t id) noexcept
{
    return id % stringsPerBlock;
}

// findInStringBlock walks a block up to one entry.
//
// block:   the resource's bytes, of any alignment, all of them or fewer than the entries claim
// Returns: the entry's units, embedded zeros included; nothing for an entry of length 0, an index
//          above 15 or a block that ends before the entry does
std::optional<std::u16string> findInStringBlock(std::span<const uint8_t> block, unsigned index);

// stringBlockIsWhole is true if all sixteen entries lie inside the block.
bool stringBlockIsWhole(std::span<const uint8_t> block) noexcept;
