// The walk of a string block: a whole block has every entry readable, and an entry that is found
// lies in the block.
#include "formats/resource/stringblock.h"
#include "require.h"

#include <span>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::span<const uint8_t> block(data, size);
    size_t used = 0;
    for (unsigned index = 0; index <= stringsPerBlock; ++index) {
        const auto text = findInStringBlock(block, index);
        used += 2 + (text ? text->size() * 2 : 0);
        require(!text || (!text->empty() && used <= size && index < stringsPerBlock));
    }
    require(!stringBlockIsWhole(block) || used - 2 <= size);
    return 0;
}
