#include "formats/trace/tracewalker.h"
#include "support/tracebytes.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

using bytes_t = std::vector<uint8_t>;

// itemsOf reads a file that comes in pieces of such sizes.
std::vector<traceItem_t> itemsOf(
    std::span<const uint8_t> bytes, const std::function<size_t()>& size = [] { return SIZE_MAX; })
{
    traceReader_t reader;
    std::vector<traceItem_t> items;
    while (true) {
        const auto piece = bytes.first(std::min(bytes.size(), size()));
        bytes = bytes.subspan(piece.size());
        reader.append(piece);
        if (piece.empty())
            reader.finish();
        while (const auto item = reader.next())
            items.push_back(*item);
        if (piece.empty())
            return items;
    }
}

template <class Kind> std::vector<Kind> onlyThe(const std::vector<traceItem_t>& items)
{
    std::vector<Kind> found;
    for (const traceItem_t& item : items)
        if (const auto* const one = std::get_if<Kind>(&item))
            found.push_back(*one);
    return found;
}

// A file in the making, and what it means by a model that shares nothing with the reader.
struct traceModel_t {
    void add(uint32_t thread, char level, const std::string& text)
    {
        const std::string item = std::to_string(trace.bytes.size()) + level + text;
        trace.record(thread, level, text);
        std::vector<std::string>& mine = open[thread];
        std::string left, lost;
        if (level == '>') {
            mine.push_back(text);
        } else if (level == '<' && !mine.empty()) {
            left = mine.back();
            mine.pop_back();
        } else if (level == 'N') {
            lost = lose(thread);
        }
        items.push_back(item + shown(mine) + left + lost + std::to_string(moment));
    }

    void damage(const std::string& bytes)
    {
        std::string lost;
        for (const auto& [thread, functions] : open)
            lost += lose(thread);
        items.push_back(std::to_string(trace.bytes.size()) + "-" + std::to_string(bytes.size()) +
                        lost);
        trace.text(bytes);
    }

    std::string lose(uint32_t thread)
    {
        std::string lost;
        for (auto& mine = open[thread]; !mine.empty(); mine.pop_back())
            lost += " lost " + std::to_string(thread) + mine.back();
        return lost;
    }

    static std::string shown(const std::vector<std::string>& functions)
    {
        std::string text = " in";
        for (const std::string& function : functions)
            text += " " + function;
        return text + " ";
    }

    traceBytes_t trace;
    std::map<uint32_t, std::vector<std::string>> open;
    int64_t day = 17361, msOfDay = 0, moment = 0;
    std::vector<std::string> items;
};

traceModel_t randomTrace(std::mt19937& random)
{
    const auto upTo = [&](size_t limit) { return random() % limit; };
    const auto two = [](size_t value) { return std::to_string(100 + value).substr(1); };
    std::string noise(5000, ' ');
    std::ranges::generate(noise, std::mt19937(7));
    traceModel_t model;
    for (int i = 0; i < 4000; ++i) {
        const std::string damages[] = {
            noise,
            std::string(1 + upTo(5000), '\0'),
            std::string(3000, 'U'),
            std::string("\x28\1\0\0U\xC8\0\1\2\3", 10), // half a record
            std::string("\x28\1\0\0X\1\0\x9", 8),       // an unknown level
            std::string("\x28\1\0\0U\x30\1\0\0>", 10),  // two headers that raced
        };
        if (i % 20 == 19)
            model.damage(damages[upTo(std::size(damages))]);
        const char level = "><>>U<EDTtN"[upTo(11)];
        const size_t longest = i % 500 == 0 ? 0x10000 : upTo(10) ? 30 : 500;
        std::string text(level == '<' ? 0 : upTo(longest), static_cast<char>('a' + i % 26));
        for (size_t at = 1; i % 3 == 0 && at + 1 < text.size(); at += 2)
            text.replace(at, 2, "\xC3\xA4");
        const size_t hour = upTo(24), ms = upTo(1000), day = upTo(31);
        if (level == 'T') {
            text = two(hour) + ":59:04." + std::to_string(1000 + ms).substr(1);
            model.msOfDay = static_cast<int64_t>((hour * 3600 + 59 * 60 + 4) * 1000 + ms);
        } else if (level == 't' || level == 'N') {
            text = level == 't' ? "07/" + two(day + 1) + "/17" : "07-" + two(day + 1) + "-2017";
            model.day = 17348 + static_cast<int64_t>(day);
        } else if (level == 'E') {
            text = "-5 " + text;
        }
        model.moment = model.day * 86'400'000 + model.msOfDay;
        const uint32_t threads[] = {0x100, 0x2B0, 0xFFFFFFF0};
        model.add(threads[upTo(3)], level, text);
    }
    return model;
}

TEST(TraceWalker, UnderstandsLongDamagedTracesInPiecesOfAnySizeAsAModelDoes)
{
    for (const uint32_t seed : {1U, 2U, 3U, 4U}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const traceModel_t model = randomTrace(random);
        traceWalker_t walker;
        std::vector<std::string> items;
        const auto size = [&] { return 1 + random() % (10U << random() % 14); };
        for (const traceItem_t& item : itemsOf(model.trace.bytes, size)) {
            const traceStep_t step = walker.take(item);
            std::string lost;
            for (const auto& [thread, function] : step.lost)
                lost += " lost " + std::to_string(thread) + function.name;
            if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
                items.push_back(std::to_string(damage->offset) + "-" +
                                std::to_string(damage->bytes) + lost);
            } else if (const auto* record = std::get_if<traceRecord_t>(&item)) {
                std::vector<std::string> names;
                for (const openFunction_t& function : step.open)
                    names.push_back(function.name);
                items.push_back(std::to_string(record->offset) + record->level + record->text +
                                traceModel_t::shown(names) + (step.left ? step.left->name : "") +
                                lost + std::to_string(step.moment.milliseconds()));
            }
        }
        const auto [expected, found] = std::ranges::mismatch(model.items, items);
        EXPECT_EQ(items.size(), model.items.size());
        ASSERT_EQ(expected == model.items.end() ? "" : *expected,
                  found == items.end() ? "" : *found);
    }
}

TEST(TraceReader, EveryCutBitFlipAndWrongLengthLosesLittle)
{
    const traceBytes_t trace = sampleTrace();
    const auto whole = onlyThe<traceRecord_t>(itemsOf(trace.bytes));
    const auto lost = [&](const bytes_t& damaged) {
        const auto found = onlyThe<traceRecord_t>(itemsOf(damaged));
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

TEST(TraceReader, SaysWhatIsWrongWithAHeader)
{
    const std::pair<std::string, std::string> cases[] = {
        {std::string("\x28\x01\0\0<\0\0", 7), "there is no header"},
        {"trace3\r\nMachine na", "the header has no end"},
        {"trace3\r\n" + std::string(100'000, 'x'), "the header has no end"},
        {"trace4\r\n.\r\n", "the header doesn't begin with its mark, \"trace3\""},
    };
    for (const auto& [file, reason] : cases)
        EXPECT_EQ(onlyThe<traceDamage_t>(itemsOf(bytes_t(file.begin(), file.end()))).at(0).reason,
                  reason);
    EXPECT_TRUE(itemsOf({}).empty());
}

} // namespace
