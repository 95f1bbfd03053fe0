// The check of a language file. Bare bytes hardly ever get past the headers, so an input changes a
// good file: a length to cut it to, then pairs of a place and a byte to put there.
#include "require.h"
#include "resources/muifile.h"
#include "resources/sampleimage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<uint8_t> good = [] {
        std::vector<uint8_t> mui(132);
        put(mui, 0, {0xFECDFECD});
        return sampleImage({{0, 1, mui}, {6, 65, std::vector<uint8_t>(32)}, {16, 1, {1, 2, 3}}});
    }();
    if (size < 2)
        return 0;
    std::vector<uint8_t> file = good;
    file.resize((data[0] | size_t{data[1]} << 8) % (good.size() + 1));
    for (size_t at = 2; at + 3 <= size; at += 3) {
        if (const size_t place = data[at] | size_t{data[at + 1]} << 8; place < file.size())
            file[place] = data[at + 2];
    }
    const muiFile_t read = readMuiFile(file);
    require((read.sound || !read.divided) && (read.divided || !read.described));
    return 0;
}
