#include "require.h"
#include "vltrace/exports.h"
#include "vltrace/lines.h"
#include "vltrace/tracefeed.h"

#include <sstream>

namespace {

void feed(std::span<const uint8_t> bytes, size_t pieceSize, vltrace::traceConsumer_i& consumer)
{
    vltrace::traceFeed_t feed("fuzz", consumer);
    for (size_t at = 0; at < bytes.size(); at += pieceSize)
        feed.feed(bytes.subspan(at, std::min(pieceSize, bytes.size() - at)));
    feed.finish();
    consumer.finish();
}

std::string shown(std::span<const uint8_t> bytes, size_t pieceSize)
{
    std::string text;
    vltrace::linePrinter_t printer({}, {}, [&](const std::string& line) { text += line; });
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
    require(shown(bytes, pieceSize) == shown(bytes, SIZE_MAX / 2));
    std::ostringstream out;
    vltrace::chromeTrace_t chrome({}, out);
    feed(bytes, pieceSize, chrome);
    return 0;
}
