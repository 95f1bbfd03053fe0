#include "formats/trace/tracereader.h"

#include "support/tracebytes.h"

#include <algorithm>
#include <map>

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

using bytes_t = std::vector<uint8_t>;

// itemsOf reads a file that comes in pieces: a record is its level and text, damage its reason and
// size, by their places.
std::map<uint64_t, std::string> itemsOf(std::span<const uint8_t> bytes, size_t size = SIZE_MAX)
{
    traceReader_t reader;
    std::map<uint64_t, std::string> items;
    for (bool more = true; more;) {
        const auto piece = bytes.first(std::min(bytes.size(), size));
        bytes = bytes.subspan(piece.size());
        reader.append(piece);
        more = !piece.empty();
        if (!more)
            reader.finish();
        while (const auto item = reader.next()) {
            if (const auto* const record = std::get_if<traceRecord_t>(&*item))
                items[record->offset] += record->level + record->text;
            else if (const auto* const damage = std::get_if<traceDamage_t>(&*item))
                items[damage->offset] += damage->reason + ' ' + std::to_string(damage->bytes) + ' ';
        }
    }
    return items;
}

TEST(TraceReader, PiecesOfAnySizeMakeNoDifference)
{
    traceBytes_t trace = sampleTrace();
    trace.text(std::string(300, '\xFF')).records(8, {"Usound", "Usound", "Ume\xFFnded"});
    const auto whole = itemsOf(trace.bytes);
    EXPECT_EQ(whole.size(), trace.starts.size() + 1);
    for (size_t size = 1; size < trace.bytes.size(); ++size)
        ASSERT_EQ(itemsOf(trace.bytes, size), whole) << size;
}

TEST(TraceReader, EveryCutBitFlipAndWrongLengthLosesLittle)
{
    const traceBytes_t trace = sampleTrace();
    const auto whole = itemsOf(trace.bytes);
    const auto lost = [&](const bytes_t& damaged) {
        auto found = itemsOf(damaged);
        return std::ranges::count_if(
            whole, [&](const auto& one) { return found[one.first] != one.second; });
    };
    for (size_t size = 0; size <= trace.bytes.size(); ++size) {
        const auto cut = std::span(trace.bytes).first(size);
        const auto later = std::count_if(trace.starts.begin() + 1, trace.starts.end(),
                                         [&](size_t end) { return end > size; });
        ASSERT_EQ(lost({cut.begin(), cut.end()}), later + (size < trace.bytes.size()));
    }
    for (size_t bit = 0; bit < trace.bytes.size() * 8; ++bit) {
        bytes_t flipped = trace.bytes;
        flipped[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        ASSERT_LE(lost(flipped), 2) << bit;
    }
    // A length that ends where a later record begins: those between are not swallowed.
    for (size_t later = 1; later < trace.starts.size(); ++later) {
        for (size_t i = 0; i < later; ++i) {
            bytes_t longer = trace.bytes;
            const size_t length = trace.starts[later] - trace.starts[i] - 7;
            longer[trace.starts[i] + 5] = static_cast<uint8_t>(length);
            longer[trace.starts[i] + 6] = static_cast<uint8_t>(length >> 8);
            ASSERT_LE(lost(longer), 1) << i << ' ' << later;
        }
    }
}

} // namespace
