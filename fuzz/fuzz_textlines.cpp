#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "storage/textlines.h"

// The lines hold every byte of the text but for the line ends, in its order, and none of them is
// blank.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    TextLines lines;
    splitlines(text, lines);
    std::string joined;
    for (const std::string& line : lines) {
        if (line.empty())
            std::abort();
        joined += line;
    }
    std::string kept = text;
    std::erase_if(kept, [](char c) { return c == '\r' || c == '\n'; });
    if (joined != kept)
        std::abort();
    return 0;
}
