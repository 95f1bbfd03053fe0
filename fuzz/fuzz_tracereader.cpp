#include "formats/text/printable.h"
#include "require.h"
#include "vltrace/exports.h"
#include "vltrace/lines.h"
#include "vltrace/tracefeed.h"

#include <map>
#include <optional>
#include <sstream>

using namespace tracecore;

namespace {

// Every byte from the first record or damage on belongs to exactly one item, in order, and every
// entry that the walker shows is left or lost at most once.
struct checks_t final : vltrace::traceConsumer_i {
    explicit checks_t(std::span<const uint8_t> input) : bytes(input) {}

    void begin(const std::string&) override {}
    void take(const traceItem_t& item, const traceStep_t& step) override
    {
        for (const lostFunction_t& lost : step.lost)
            require(depths[lost.thread]-- > 0);
        if (const auto* record = std::get_if<traceRecord_t>(&item)) {
            require(printable(record->text).size() >= record->text.size() / 2);
            pass(record->offset,
                 size_t{7} + bytes[record->offset + 5] + 256U * bytes[record->offset + 6]);
            size_t& depth = depths[record->thread];
            depth += record->level == levelEntry;
            require(!step.left || depth-- > 0);
            require(step.open->size() == depth);
        } else if (const auto* damage = std::get_if<traceDamage_t>(&item);
                   damage && damage->bytes) {
            pass(damage->offset, damage->bytes);
        }
    }
    void end() override { require(at.value_or(bytes.size()) == bytes.size()); }

    void pass(uint64_t offset, uint64_t size)
    {
        require(offset == at.value_or(offset) && size > 0 && size <= bytes.size() - offset);
        at = offset + size;
    }

    std::span<const uint8_t> bytes;
    std::map<uint32_t, size_t> depths;
    std::optional<uint64_t> at;
};

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
    checks_t checks(bytes);
    feed(bytes, pieceSize, checks);
    require(shown(bytes, pieceSize) == shown(bytes, SIZE_MAX / 2));
    std::ostringstream out;
    vltrace::chromeTrace_t chrome({}, out);
    feed(bytes, pieceSize, chrome);
    return 0;
}
