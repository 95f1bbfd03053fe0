#include "require.h"
#include "vltrace/chrometrace.h"
#include "vltrace/lines.h"
#include "vltrace/merge.h"

#include <sstream>

namespace {

void feed(std::span<const uint8_t> bytes, size_t pieceSize, vltrace::traceConsumer_i& consumer)
{
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    vltrace::traceInput_t input(vltrace::sourceOf("-", 1), in, pieceSize, false);
    const vltrace::filter_t filter;
    vltrace::traceMerge_t merge(consumer, filter, [](const CToolError&) {});
    merge.run({&input});
    consumer.finish();
}

std::string shown(std::span<const uint8_t> bytes, size_t pieceSize)
{
    std::string text;
    vltrace::linePrinter_t printer({}, [&](const std::string& line) { text += line; });
    feed(bytes, pieceSize, printer);
    return text;
}

} // namespace

// The first byte says how the rest, a trace file, comes in pieces: the size of the pieces must make
// no difference.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::span<const uint8_t> bytes(data + 1, size - 1);
    const size_t pieceSize = data[0] + size_t{1};
    require(shown(bytes, pieceSize) == shown(bytes, size + 1));
    std::ostringstream out;
    vltrace::chromeTrace_t chrome(out);
    feed(bytes, pieceSize, chrome);
    return 0;
}
