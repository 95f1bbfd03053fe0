#include "formats/resource/stringblock.h"

namespace {

uint16_t unitAt(std::span<const uint8_t> bytes, size_t offset) noexcept
{
    return static_cast<uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

// takeEntry takes one entry's units off the front; false, and nothing taken, if the block ends
// before it does.
bool takeEntry(std::span<const uint8_t>& block, std::span<const uint8_t>& units) noexcept
{
    if (block.size() < 2)
        return false;
    const size_t size = size_t{unitAt(block, 0)} * 2;
    if (block.size() - 2 < size)
        return false;
    units = block.subspan(2, size);
    block = block.subspan(2 + size);
    return true;
}

} // namespace

std::optional<std::u16string> findInStringBlock(std::span<const uint8_t> block, unsigned index)
{
    std::span<const uint8_t> units;
    for (unsigned i = 0; i < stringsPerBlock && takeEntry(block, units); ++i) {
        // A wanted entry of length 0 is passed over like any other. Intended: the caller then asks
        // the platform.
        if (i != index || units.empty())
            continue;
        std::u16string text(units.size() / 2, u'\0');
        for (size_t unit = 0; unit < text.size(); ++unit)
            text[unit] = unitAt(units, unit * 2);
        return text;
    }
    return std::nullopt;
}

bool stringBlockIsWhole(std::span<const uint8_t> block) noexcept
{
    std::span<const uint8_t> units;
    for (unsigned i = 0; i < stringsPerBlock; ++i) {
        if (!takeEntry(block, units))
            return false;
    }
    return true;
}
