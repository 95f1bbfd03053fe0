#include "formats/trace/tracereader.h"
#include "support/tracebytes.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

using bytes_t = std::vector<uint8_t>;

struct read_t {
    std::vector<traceRecord_t> records;
    std::vector<traceDamage_t> damages;
};

// Reads a file that comes in pieces.
read_t read(const bytes_t& bytes, size_t pieceSize = 1 << 20)
{
    traceReader_t reader;
    read_t result;
    const auto drain = [&] {
        while (const auto item = reader.next()) {
            if (const auto* record = std::get_if<traceRecord_t>(&*item))
                result.records.push_back(*record);
            else if (const auto* damage = std::get_if<traceDamage_t>(&*item))
                result.damages.push_back(*damage);
        }
    };
    for (size_t from = 0; from < bytes.size(); from += pieceSize) {
        reader.append(std::span(bytes).subspan(from, std::min(pieceSize, bytes.size() - from)));
        drain();
    }
    reader.finish();
    drain();
    return result;
}

TEST(TraceReader, GivesRecordsInPiecesOfAnySize)
{
    traceBytes_t trace = sampleTrace();
    const size_t lengths[] = {0, 1, 7, 8, 9, 17, 349, 350, 65535};
    for (size_t length : lengths)
        trace.record(0xFFFFFFF0, 'U', std::string(length, 'x'));
    trace.records(8, {"Umended \xFF byte \xE6\x97", "<"});
    const read_t whole = read(trace.bytes);
    ASSERT_EQ(whole.records.size(), trace.starts.size());
    EXPECT_EQ(whole.records[6].text, "-2147024891 Größe of 日");
    for (size_t i = 0; i < std::size(lengths); ++i)
        EXPECT_EQ(whole.records[20 + i].text, std::string(lengths[i], 'x'));
    EXPECT_EQ(whole.records[29].text, "mended \uFFFD byte \uFFFD\uFFFD");

    trace = sampleTrace();
    trace.bytes[trace.starts[4] + 4] ^= 0x80; // damage, so that the search meets every cut too
    for (size_t size : {1U, 2U, 3U, 7U, 8U, 64U, 1U << 20}) {
        const read_t again = read(trace.bytes, size);
        EXPECT_EQ(again.records.size(), trace.starts.size() - 1) << size;
    }
}

TEST(TraceReader, EveryCutBitFlipAndWrongLengthLosesLittle)
{
    const traceBytes_t trace = sampleTrace();
    const auto whole = read(trace.bytes).records;
    const auto lost = [&](const bytes_t& damaged) {
        const auto found = read(damaged).records;
        return std::ssize(whole) - std::ranges::count_if(found, [&](const traceRecord_t& record) {
                   const auto at = std::ranges::find(whole, record.offset, &traceRecord_t::offset);
                   return at != whole.end() && at->text == record.text;
               });
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

TEST(TraceReader, FindsTheRecordsBehindDamage)
{
    std::string noise(0x10000, ' ');
    std::ranges::generate(noise, std::mt19937(7));
    const std::pair<std::string, std::string> cases[] = {
        {"before", noise.substr(0, 5000)},
        {"before", std::string(3000, '\0')},
        {"before", std::string(3000, 'U')},
        {"before", std::string("\x28\1\0\0U\xC8\0\1\2\3", 10)}, // half a record
        {"before", std::string("\x28\1\0\0X\1\0\x9", 8)},       // an unknown level
        {"before", std::string("\x28\1\0\0U\x30\1\0\0>", 10)},  // two headers that raced
        {std::string(0x10003, 'x'), noise},                     // a length that wrapped
    };
    for (const auto& [before, damage] : cases) {
        traceBytes_t trace;
        trace.record(8, 'U', before).text(damage).records(8, {"T10:00:00.000", "E-1 behind", "<"});
        const read_t found = read(trace.bytes);
        ASSERT_EQ(found.records.size(), 4U) << before.substr(0, 9) + damage.substr(0, 9);
        EXPECT_EQ(found.records[0].text.size(), before.size() & 0xFFFF);
        EXPECT_EQ(found.records[2].text, "-1 behind");
        ASSERT_EQ(found.damages.size(), 1U);
        EXPECT_EQ(found.damages[0].bytes, damage.size());
    }
}

TEST(TraceReader, TellsWhatIsWrongWithAHeader)
{
    const std::pair<std::string, std::string> cases[] = {
        {std::string("\x28\x01\0\0<\0\0", 7), "there is no header"},
        {"trace3\r\nMachine na", "the header has no end"},
        {"trace3\r\n" + std::string(100'000, 'x'), "the header has no end"},
        {"trace4\r\n.\r\n", "the header doesn't begin with its mark, \"trace3\""},
    };
    for (const auto& [file, reason] : cases)
        EXPECT_EQ(read({file.begin(), file.end()}).damages.at(0).reason, reason);
    EXPECT_TRUE(read({}).damages.empty());
}

} // namespace
