// The check of a language file, and the walk of a string block: a whole block has every entry
// readable, and an entry that is found lies in the block.
#include "formats/resource/muifile.h"
#include "formats/resource/stringblock.h"
#include "require.h"
#include "support/sampleimage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<uint8_t> good = [] {
        std::vector<uint8_t> mui(132);
        put(mui, 0, {0xFECDFECD});
        return sampleImage({{0, 1, mui}, {6, 65, std::vector<uint8_t>(32)}, {16, 1, {1, 2, 3}}});
    }();
    const std::span block(data, size);
    const muiFile_t read = readMuiFile(changed(good, block));
    require((read.sound || !read.divided) && (read.divided || !read.described));
    size_t used = 0;
    for (unsigned index = 0; index <= stringsPerBlock; ++index) {
        const auto text = findInStringBlock(block, index);
        used += 2 + (text ? text->size() * 2 : 0);
        require(!text || (!text->empty() && used <= size && index < stringsPerBlock));
    }
    require(!stringBlockIsWhole(block) || used - 2 <= size);
    return 0;
}
