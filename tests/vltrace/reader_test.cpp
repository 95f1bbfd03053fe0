#include "tracebytes.h"

#include "tracecore/tracewalker.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <set>

using namespace tracecore;

namespace {

using bytes_t = std::vector<uint8_t>;

std::vector<traceItem_t> read(const bytes_t& bytes, size_t pieceSize = SIZE_MAX)
{
    traceReader_t reader;
    std::vector<traceItem_t> items;
    const auto drain = [&] {
        while (auto item = reader.next())
            items.push_back(std::move(*item));
    };
    for (size_t at = 0; at < bytes.size();) {
        const auto piece = std::span(bytes).subspan(at, std::min(pieceSize, bytes.size() - at));
        reader.append(piece);
        drain();
        at += piece.size();
    }
    reader.finish();
    drain();
    return items;
}

std::vector<traceRecord_t> recordsOf(const std::vector<traceItem_t>& items)
{
    std::vector<traceRecord_t> records;
    for (const auto& item : items)
        if (const auto* record = std::get_if<traceRecord_t>(&item))
            records.push_back(*record);
    return records;
}

std::vector<traceDamage_t> damageOf(const std::vector<traceItem_t>& items)
{
    std::vector<traceDamage_t> damages;
    for (const auto& item : items)
        if (const auto* damage = std::get_if<traceDamage_t>(&item); damage && damage->bytes)
            damages.push_back(*damage);
    return damages;
}

std::string shape(const std::vector<traceItem_t>& items)
{
    std::string text;
    for (const auto& item : items) {
        if (const auto* record = std::get_if<traceRecord_t>(&item))
            text += std::to_string(record->offset) + record->level + record->text + "\n";
        else if (const auto* damage = std::get_if<traceDamage_t>(&item))
            text += std::to_string(damage->offset) + "+" + std::to_string(damage->bytes) +
                    damage->reason + "\n";
        else
            text += "header\n";
    }
    return text;
}

// Every byte behind the header belongs to one record or to damage that was told, in order and
// without a gap.
void expectEveryByteTold(const bytes_t& bytes, const std::vector<traceItem_t>& items)
{
    std::optional<uint64_t> at;
    for (const auto& item : items) {
        uint64_t offset = 0;
        uint64_t size = 0;
        if (const auto* record = std::get_if<traceRecord_t>(&item)) {
            offset = record->offset;
            size = 7U + bytes[offset + 5] + 256U * bytes[offset + 6];
        } else if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
            offset = damage->offset;
            size = damage->bytes;
        } else {
            continue;
        }
        if (size == 0)
            continue;
        ASSERT_EQ(at.value_or(offset), offset);
        at = offset + size;
    }
    if (at) {
        ASSERT_EQ(*at, bytes.size());
    }
}

TEST(TraceReader, GivesHeaderAndRecordsOfAWholeFile)
{
    const traceBytes_t trace = sampleTrace();
    const auto items = read(trace.bytes);
    ASSERT_EQ(items.size(), trace.starts.size() + 1);
    EXPECT_EQ(std::get<traceHeader_t>(items[0]).lines,
              (std::vector<std::string>{"trace3", "Compiled: Jul 14 2017 15:59:04",
                                        "Trace Ver: 3.0.2", "07/14/2017 15:59:04.123"}));
    const auto records = recordsOf(items);
    for (size_t i = 0; i < records.size(); ++i)
        EXPECT_EQ(records[i].offset, trace.starts[i]);
    EXPECT_EQ(records[6].text, "-2147024891 Größe of \xE6\x97\xA5");
    EXPECT_EQ(records[6].thread, 0x1A4U);
}

TEST(TraceReader, UnscramblesTextsOfAnyLength)
{
    std::mt19937 random(1);
    traceBytes_t trace;
    std::vector<std::string> texts;
    for (size_t length : {0U, 1U, 7U, 8U, 9U, 15U, 16U, 17U, 349U, 350U, 65535U}) {
        std::string text(length, ' ');
        for (char& c : text)
            c = static_cast<char>('!' + random() % 90);
        trace.record(0xFFFFFFF0, 'U', text);
        texts.push_back(text);
    }
    const auto records = recordsOf(read(trace.bytes));
    ASSERT_EQ(records.size(), texts.size());
    for (size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(records[i].text, texts[i]);
    EXPECT_EQ(records[0].thread, 0xFFFFFFF0U);
}

TEST(TraceReader, PiecesOfAnySizeGiveTheSame)
{
    traceBytes_t trace = sampleTrace();
    trace.bytes[trace.starts[4] + 4] ^= 0x80; // damage, so that the search meets every cut too
    for (int i = 0; i < 12'000; ++i)
        trace.record(8, 'U', "text " + std::to_string(i)).text(i % 100 ? "" : "\x01U");
    const std::string whole = shape(read(trace.bytes));
    for (size_t size : {1U, 2U, 3U, 7U, 8U, 64U, 30'000U})
        EXPECT_EQ(shape(read(trace.bytes, size)), whole) << size;
}

TEST(TraceReader, EveryPrefixKeepsTheRecordsBeforeTheCut)
{
    const traceBytes_t trace = sampleTrace();
    for (size_t size = 0; size <= trace.bytes.size(); ++size) {
        SCOPED_TRACE(size);
        const bytes_t cut(trace.bytes.begin(),
                          trace.bytes.begin() + static_cast<std::ptrdiff_t>(size));
        const auto items = read(cut);
        expectEveryByteTold(cut, items);
        size_t whole = 0;
        while (whole + 1 < trace.starts.size() && trace.starts[whole + 1] <= size)
            ++whole;
        whole += size == trace.bytes.size();
        ASSERT_EQ(recordsOf(items).size(), whole);
    }
}

TEST(TraceReader, EveryBitFlipLosesLittle)
{
    const traceBytes_t trace = sampleTrace();
    const auto whole = recordsOf(read(trace.bytes));
    for (size_t bit = 0; bit < trace.bytes.size() * 8; ++bit) {
        SCOPED_TRACE(bit);
        bytes_t flipped = trace.bytes;
        flipped[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        const auto items = read(flipped);
        expectEveryByteTold(flipped, items);
        std::set<std::pair<uint64_t, std::string>> found;
        for (const auto& record : recordsOf(items))
            found.emplace(record.offset, record.text);
        size_t kept = 0;
        for (const auto& record : whole)
            kept += found.count({record.offset, record.text});
        ASSERT_GE(kept + 2, whole.size()) << shape(items);
    }
}

TEST(TraceReader, FindsTheRecordsBehindDamage)
{
    std::mt19937 random(7);
    bytes_t noise(5000);
    for (uint8_t& byte : noise)
        byte = static_cast<uint8_t>(random());
    const struct {
        const char* what;
        bytes_t damage;
    } cases[] = {
        {"noise", noise},
        {"zeros", bytes_t(3000, 0)},
        {"a level among zeros", {0, 0, 0, 0, 'X', 0, 0, 0, 0, 'U', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"level letters", bytes_t(3000, 'U')},
        {"half a record", {0x28, 1, 0, 0, 'U', 200, 0, 1, 2, 3}},
        {"a record of an unknown level", {0x28, 1, 0, 0, 'X', 1, 0, 9}},
        {"two headers that raced", {0x28, 1, 0, 0, 'U', 0x30, 1, 0, 0, '>'}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        traceBytes_t trace;
        trace.text(traceBytes_t::header)
            .record(8, 'U', "before")
            .text({c.damage.begin(), c.damage.end()});
        const size_t behind = trace.bytes.size();
        trace.record(8, 'T', "10:00:00.000").record(8, 'E', "-1 behind").record(8, '<');
        const auto items = read(trace.bytes);
        expectEveryByteTold(trace.bytes, items);
        const auto records = recordsOf(items);
        ASSERT_GE(records.size(), 4U);
        EXPECT_EQ(records.front().text, "before");
        EXPECT_EQ(records[records.size() - 3].offset, behind);
        EXPECT_EQ(records[records.size() - 2].text, "-1 behind");
        ASSERT_EQ(damageOf(items).size(), 1U);
        EXPECT_EQ(damageOf(items)[0].bytes, c.damage.size());
    }
}

TEST(TraceReader, ATextWhoseLengthWrappedCostsOnlyItself)
{
    std::mt19937 random(3);
    for (size_t length : {0x10000U, 0x10003U, 0x1FFFFU, 0x20010U}) {
        SCOPED_TRACE(length);
        traceBytes_t trace;
        trace.text(traceBytes_t::header).record(8, 'U', std::string(length, 'x'));
        const size_t lost = length - (length & 0xFFFF);
        for (size_t i = 0; i < lost; ++i)
            trace.bytes.push_back(static_cast<uint8_t>(random()));
        trace.record(8, 'U', "and so on");
        const auto items = read(trace.bytes);
        const auto records = recordsOf(items);
        ASSERT_EQ(records.size(), 2U);
        EXPECT_EQ(records[0].text, std::string(length & 0xFFFF, 'x'));
        EXPECT_EQ(records[1].text, "and so on");
        ASSERT_EQ(damageOf(items).size(), 1U);
        EXPECT_EQ(damageOf(items)[0].bytes, lost);
        EXPECT_NE(damageOf(items)[0].reason.find("too long"), std::string::npos);
    }
}

TEST(TraceReader, ADamagedTextIsMendedWhenItsFrameHolds)
{
    traceBytes_t trace;
    trace.text(traceBytes_t::header).record(8, 'U', "first \xFF byte \xE6\x97").record(8, '<');
    trace.record(8, 'U', "last \xFF");
    const auto records = recordsOf(read(trace.bytes));
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[2].text, "last \uFFFD");
    EXPECT_EQ(records[0].text, "first \uFFFD byte \uFFFD\uFFFD");
    EXPECT_TRUE(records[0].mended);
}

TEST(TraceReader, TellsWhatIsWrongWithAHeader)
{
    const std::string record(7, '\0');
    const struct {
        std::string file;
        const char* reason;
        size_t headers;
    } cases[] = {
        {"", "", 0},
        {std::string("\x28\x01\0\0<\0\0", 7), "there is no header", 0},
        {"trace3\r\nMachine name: A\r\n", "the header has no end", 1},
        {"trace3\r\nMachine na", "the header has no end", 1},
        {"trace4\r\n.\r\n", "the header doesn't begin with its mark", 1},
        {"trace3\r\n" + std::string(100'000, 'x'), "the header has no end", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file.substr(0, 40));
        const auto items = read(bytes_t(c.file.begin(), c.file.end()));
        size_t headers = 0;
        std::string reasons;
        for (const auto& item : items) {
            headers += std::holds_alternative<traceHeader_t>(item);
            if (const auto* damage = std::get_if<traceDamage_t>(&item))
                reasons += damage->reason;
        }
        EXPECT_EQ(headers, c.headers);
        EXPECT_EQ(reasons.substr(0, std::string(c.reason).size()), c.reason);
    }
}

// Long texts that hold the heads of further long texts, all of which read well for 16 KiB on
// average and then don't. Whoever reads each to its end takes hundreds of times as long as for a
// good file.
bytes_t textsWithinTexts()
{
    const auto keyByte = [](const auto& key, size_t i) {
        return static_cast<uint8_t>(key[i / 4] >> 8 * (i % 4));
    };
    const auto isReadable = [](int c) { return c >= 0x20 && c < 0x7F; };
    const auto first = traceBytes_t::encipher({0x3C5A9D17, 0xE86B40F2});
    const uint8_t head[] = {'U', 0xA7, 0x7F}; // level and length
    std::mt19937 random(5);
    bytes_t bytes = {0, 0, 0, 0, head[0], head[1], head[2]};
    auto block = std::array<uint32_t, 2>{0x3C5A9D17, 0xE86B40F2};
    for (size_t count = 1; bytes.size() < 256 * 1024; ++count) {
        const bool withHead = count % 4 == 1;
        const auto key = traceBytes_t::encipher(block);
        // The next block of the stream has to be readable with a head in it, or at the start of a
        // text as well.
        const auto fits = [&](const auto& scrambled) {
            const auto next = traceBytes_t::encipher(scrambled);
            bool fit = true;
            for (size_t i = 0; i < 8; ++i) {
                if (count % 4 == 0 && i >= 5)
                    fit = fit && isReadable(keyByte(next, i) ^ head[i - 5]);
                if (withHead)
                    fit = fit && ((keyByte(next, i) ^ keyByte(first, i)) & 0x80) == 0;
            }
            return fit;
        };
        do {
            block = {};
            for (size_t i = 0; i < 8; ++i) {
                const bool fixed = withHead && count > 1 && i >= 5;
                uint32_t byte = 0;
                do
                    byte = fixed ? head[i - 5] : random() & 0xFF;
                while (!fixed && (!isReadable(static_cast<int>(byte) ^ keyByte(key, i)) ||
                                  (count % 4 == 2 &&
                                   !isReadable(static_cast<int>(byte) ^ keyByte(first, i)))));
                block[i / 4] |= byte << 8 * (i % 4);
            }
        } while (count % 4000 != 2 && !fits(block));
        for (size_t i = 0; i < 8; ++i)
            bytes.push_back(count % 4000 == 3 ? 0xFF : keyByte(block, i));
        if (count % 4000 == 3)
            block = {0xFFFFFFFF, 0xFFFFFFFF};
    }
    return bytes;
}

TEST(TraceReader, TakesLinearTimeForTextsWithinTexts)
{
    const auto timeOf = [](const bytes_t& bytes) {
        const auto start = std::chrono::steady_clock::now();
        expectEveryByteTold(bytes, read(bytes));
        return std::chrono::steady_clock::now() - start;
    };
    traceBytes_t good;
    for (int i = 0; i < 8; ++i)
        good.record(8, 'U', std::string(0x7FF0, 'x'));
    const auto bytes = textsWithinTexts();
    timeOf(good.bytes); // warms up
    const auto usual = timeOf(good.bytes);
    const auto taken = timeOf(bytes);
    RecordProperty("times_as_long", std::to_string(taken / usual));
    EXPECT_LT(taken / usual, 60);
}

TEST(TraceWalker, FollowsTimesAndOpenFunctions)
{
    traceWalker_t walker;
    std::string seen;
    for (const auto& item : read(sampleTrace().bytes)) {
        const traceStep_t step = walker.take(item);
        const auto* record = std::get_if<traceRecord_t>(&item);
        if (!record || record->level == 'T' || record->level == 't')
            continue;
        const auto date = calendarOf(step.moment.day.value_or(0));
        seen += std::to_string(date.day) + " " +
                std::to_string(step.moment.msOfDay.value_or(0) % 60'000) + record->level;
        for (const openFunction_t& function : *step.open)
            seen += " " + function.name;
        if (step.left)
            seen += " left " + step.left->name +
                    std::to_string(step.moment.milliseconds() - step.left->entered.milliseconds());
        seen += "\n";
    }
    EXPECT_EQ(seen, "14 4100> CVLKTPages::SetStorageData\n"
                    "14 4110> CVLKTPages::SetStorageData RestoreBackup\n"
                    "14 4150E CVLKTPages::SetStorageData RestoreBackup\n"
                    "14 4020> Poll\n"
                    "14 4160U Poll\n"
                    "14 4160< left Poll140\n"
                    "14 4160< CVLKTPages::SetStorageData left RestoreBackup50\n"
                    "14 4300< left CVLKTPages::SetStorageData200\n"
                    "14 4300N\n"
                    "15 5> main\n"
                    "15 5E main\n");
}

TEST(TraceWalker, ForgetsOpenFunctionsAtDamageAndAtANewWriter)
{
    traceWalker_t walker;
    const auto record = [](uint32_t thread, char level, const char* text) {
        return traceRecord_t{0, thread, level, text, false};
    };
    walker.take(record(1, '>', "a"));
    walker.take(record(1, '>', "b"));
    walker.take(record(2, '>', "c"));
    const auto joined = walker.take(record(1, 'N', "01-02-1999"));
    ASSERT_EQ(joined.lost.size(), 2U);
    EXPECT_EQ(joined.lost[0].function.name, "b"); // innermost first
    EXPECT_EQ(joined.moment.day, dayOf(1999, 1, 2));
    EXPECT_EQ(walker.take(record(1, 't', "02/03/00")).moment.day,
              dayOf(2000, 2, 3)); // the nearest year
    EXPECT_TRUE(walker.take(traceDamage_t{0, 0, "nothing lost"}).lost.empty());
    EXPECT_EQ(walker.take(traceDamage_t{0, 9, "noise"}).lost.size(), 1U);
    EXPECT_FALSE(walker.take(record(2, '<', "")).left); // the exit of c
    EXPECT_FALSE(walker.take(record(2, 'T', "25:00:00.000")).moment.msOfDay);
}

} // namespace
