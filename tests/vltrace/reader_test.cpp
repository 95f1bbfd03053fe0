#include "tracebytes.h"

#include "tracecore/tracewalker.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace tracecore;

namespace {

using bytes_t = std::vector<uint8_t>;

struct read_t {
    std::vector<traceItem_t> items;
    std::vector<traceRecord_t> records;
    std::vector<traceDamage_t> damages;
};

// Reads a file that comes in pieces. Every byte from the first record on has to belong to one
// record or to damage that was told, in order and without a gap.
read_t read(const bytes_t& bytes, size_t pieceSize = SIZE_MAX)
{
    traceReader_t reader;
    read_t result;
    uint64_t at = 0;
    const auto take = [&](uint64_t offset, uint64_t size) {
        EXPECT_TRUE(at == offset || at == 0);
        at = size ? offset + size : at;
    };
    const auto drain = [&] {
        while (auto item = reader.next()) {
            if (const auto* record = std::get_if<traceRecord_t>(&*item)) {
                take(record->offset,
                     7U + bytes[record->offset + 5] + 256U * bytes[record->offset + 6]);
                result.records.push_back(*record);
            } else if (const auto* damage = std::get_if<traceDamage_t>(&*item)) {
                take(damage->bytes ? damage->offset : at, damage->bytes);
                result.damages.push_back(*damage);
            }
            result.items.push_back(std::move(*item));
        }
    };
    for (size_t from = 0; from < bytes.size(); from += std::min(pieceSize, bytes.size() - from)) {
        reader.append(std::span(bytes).subspan(from, std::min(pieceSize, bytes.size() - from)));
        drain();
    }
    reader.finish();
    drain();
    EXPECT_TRUE(at == bytes.size() || at == 0);
    return result;
}

TEST(TraceReader, GivesHeaderAndRecordsOfAWholeFileInPiecesOfAnySize)
{
    traceBytes_t trace = sampleTrace();
    std::vector<std::string> texts;
    for (size_t length : {0U, 1U, 7U, 8U, 9U, 17U, 349U, 350U, 65535U})
        trace.record(0xFFFFFFF0, 'U', texts.emplace_back(length, 'x'));
    const read_t whole = read(trace.bytes);
    EXPECT_EQ(std::get<traceHeader_t>(whole.items[0]).lines,
              (std::vector<std::string>{"trace3", "Compiled: Jul 14 2017 15:59:04",
                                        "Trace Ver: 3.0.2", "07/14/2017 15:59:04.123"}));
    ASSERT_EQ(whole.records.size(), trace.starts.size());
    EXPECT_EQ(whole.records[6].text, "-2147024891 Größe of 日");
    EXPECT_EQ(whole.records[6].thread, 0x1A4U);
    EXPECT_EQ(whole.records.back().thread, 0xFFFFFFF0U);
    for (size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(whole.records[20 + i].text, texts[i]);

    trace = sampleTrace();
    trace.bytes[trace.starts[4] + 4] ^= 0x80; // damage, so that the search meets every cut too
    const read_t damaged = read(trace.bytes);
    for (size_t size : {1U, 2U, 3U, 7U, 8U, 64U, 30'000U}) {
        const read_t again = read(trace.bytes, size);
        ASSERT_EQ(again.records.size(), damaged.records.size()) << size;
        for (size_t i = 0; i < again.records.size(); ++i)
            EXPECT_EQ(again.records[i].offset, damaged.records[i].offset);
        EXPECT_EQ(again.damages.size(), 1U);
    }
}

TEST(TraceReader, EveryPrefixKeepsTheRecordsBeforeTheCut)
{
    const traceBytes_t trace = sampleTrace();
    for (size_t size = 0; size <= trace.bytes.size(); ++size) {
        const auto end = trace.bytes.begin() + static_cast<std::ptrdiff_t>(size);
        const auto cut = std::upper_bound(trace.starts.begin() + 1, trace.starts.end(), size) - 1;
        const auto whole = cut - trace.starts.begin() + (size == trace.bytes.size());
        ASSERT_EQ(read({trace.bytes.begin(), end}).records.size(), static_cast<size_t>(whole));
    }
}

TEST(TraceReader, EveryBitFlipLosesLittle)
{
    const traceBytes_t trace = sampleTrace();
    const auto whole = read(trace.bytes).records;
    for (size_t bit = 0; bit < trace.bytes.size() * 8; ++bit) {
        SCOPED_TRACE(bit);
        bytes_t flipped = trace.bytes;
        flipped[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        std::set<std::pair<uint64_t, std::string>> found;
        for (const auto& record : read(flipped).records)
            found.emplace(record.offset, record.text);
        size_t kept = 0;
        for (const auto& record : whole)
            kept += found.count({record.offset, record.text});
        ASSERT_GE(kept + 2, whole.size());
    }
}

TEST(TraceReader, FindsTheRecordsBehindDamage)
{
    std::mt19937 random(7);
    std::string noise(0x10000, ' ');
    for (char& byte : noise)
        byte = static_cast<char>(random());
    const struct {
        std::string before, damage;
    } cases[] = {
        {"before", noise.substr(0, 5000)},
        {"before", std::string(3000, '\0')},
        {"before", std::string("\0\0\0\0X\0\0\0\0U\0\0\0\0\0\0\0\0\0\0\0", 21)},
        {"before", std::string(3000, 'U')},
        {"before", std::string("\x28\1\0\0U\xC8\0\1\2\3", 10)}, // half a record
        {"before", std::string("\x28\1\0\0X\1\0\x9", 8)},       // an unknown level
        {"before", std::string("\x28\1\0\0U\x30\1\0\0>", 10)},  // two headers that raced
        {std::string(0x10003, 'x'), noise},                     // a length that wrapped
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        traceBytes_t trace;
        trace.record(8, 'U', c.before).text(c.damage);
        trace.record(8, 'T', "10:00:00.000").record(8, 'E', "-1 behind").record(8, '<');
        const read_t found = read(trace.bytes);
        ASSERT_EQ(found.records.size(), 4U);
        EXPECT_EQ(found.records[0].text.size(), c.before.size() & 0xFFFF);
        EXPECT_EQ(found.records[1].offset, trace.starts[1]);
        EXPECT_EQ(found.records[2].text, "-1 behind");
        ASSERT_EQ(found.damages.size(), 1U);
        EXPECT_EQ(found.damages[0].bytes, c.damage.size());
        EXPECT_EQ(found.damages[0].reason.find("too long") != std::string::npos,
                  c.damage.size() == noise.size());
    }
}

TEST(TraceReader, ADamagedTextIsMendedWhenItsFrameHolds)
{
    traceBytes_t trace;
    trace.record(8, 'U', "first \xFF byte \xE6\x97").record(8, '<').record(8, 'U', "last \xFF");
    const auto records = read(trace.bytes).records;
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[2].text, "last \uFFFD");
    EXPECT_EQ(records[0].text, "first \uFFFD byte \uFFFD\uFFFD");
    EXPECT_TRUE(records[0].mended);
}

TEST(TraceReader, TellsWhatIsWrongWithAHeader)
{
    const struct {
        std::string file, reason;
        size_t headers;
    } cases[] = {
        {std::string("\x28\x01\0\0<\0\0", 7), "there is no header", 0},
        {"trace3\r\nMachine name: A\r\n", "the header has no end", 1},
        {"trace3\r\nMachine na", "the header has no end", 1},
        {"trace4\r\n.\r\n", "the header doesn't begin with its mark, \"trace3\"", 1},
        {"trace3\r\n" + std::string(100'000, 'x'), "the header has no end", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file.substr(0, 40));
        const read_t found = read({c.file.begin(), c.file.end()});
        ASSERT_FALSE(found.damages.empty());
        EXPECT_EQ(found.damages[0].reason, c.reason);
        EXPECT_EQ(found.items.size() - found.records.size() - found.damages.size(), c.headers);
    }
    EXPECT_TRUE(read({}).items.empty());
}

TEST(TraceWalker, ForgetsOpenFunctionsAtDamageAndAtANewWriter)
{
    traceWalker_t walker;
    const auto take = [&walker](uint32_t thread, char level, const char* text) {
        return walker.take(traceRecord_t{0, thread, level, text, false});
    };
    take(1, '>', "a");
    take(1, '>', "b");
    take(2, '>', "c");
    const auto joined = take(1, 'N', "01-02-1999");
    ASSERT_EQ(joined.lost.size(), 2U);
    EXPECT_EQ(joined.lost[0].function.name, "b"); // innermost first
    EXPECT_EQ(joined.moment.day, dayOf(1999, 1, 2));
    EXPECT_EQ(take(1, 't', "02/03/00").moment.day, dayOf(2000, 2, 3)); // the nearest year
    EXPECT_TRUE(walker.take(traceDamage_t{0, 0, "nothing lost"}).lost.empty());
    EXPECT_EQ(walker.take(traceDamage_t{0, 9, "noise"}).lost.size(), 1U);
    EXPECT_FALSE(take(2, '<', "").left); // the exit of c
    EXPECT_FALSE(take(2, 'T', "25:00:00.000").moment.msOfDay);
}

} // namespace
