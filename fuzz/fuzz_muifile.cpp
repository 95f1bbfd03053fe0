// The check of a language file.
#include "formats/resource/muifile.h"
#include "require.h"
#include "support/sampleimage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<uint8_t> good = [] {
        std::vector<uint8_t> mui(132);
        put(mui, 0, {0xFECDFECD});
        return sampleImage({{0, 1, mui}, {6, 65, std::vector<uint8_t>(32)}, {16, 1, {1, 2, 3}}});
    }();
    const muiFile_t read = readMuiFile(changed(good, {data, size}));
    require((read.sound || !read.divided) && (read.divided || !read.described));
    return 0;
}
