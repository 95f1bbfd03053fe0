#include "resources/muifile.h"
#include "resources/stringblock.h"
#include "sampleimage.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

// A block with these texts from index 0 on, and entries of length 0 behind them.
bytes stringBlock(const std::vector<std::u16string>& texts)
{
    bytes block;
    const auto append = [&block](char16_t unit) {
        block.push_back(static_cast<uint8_t>(unit));
        block.push_back(static_cast<uint8_t>(unit >> 8));
    };
    for (size_t i = 0; i < stringsPerBlock; ++i) {
        const std::u16string text = i < texts.size() ? texts[i] : std::u16string();
        append(static_cast<char16_t>(text.size()));
        for (const char16_t unit : text)
            append(unit);
    }
    return block;
}

bytes muiData(uint8_t service, uint8_t content, size_t size = 132)
{
    bytes data(132);
    put(data, 0, 0xFECDFECD, 4);
    std::fill_n(data.begin() + 28, 16, service);
    std::fill_n(data.begin() + 44, 16, content);
    data.resize(size);
    return data;
}

muiFile_t read(const std::vector<sampleResource_t>& resources)
{
    return readMuiFile(sampleImage(resources));
}

} // namespace

TEST(StringBlock, FindsTheWantedEntryAndPassesOverEmptyOnes)
{
    const std::u16string withZero(u"a\0b", 3);
    const bytes block = stringBlock({u"first", u"", withZero, u"\u5bc6\u78bc"});
    const bytes last = stringBlock(
        {u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"last"});
    const struct {
        const bytes& block;
        unsigned index;
        std::optional<std::u16string> text;
    } cases[] = {
        {block, 0, u"first"},        {block, 1, std::nullopt}, {block, 2, withZero},
        {block, 3, u"\u5bc6\u78bc"}, {block, 4, std::nullopt}, {block, 15, std::nullopt},
        {block, 16, std::nullopt},   {last, 15, u"last"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        EXPECT_EQ(findInStringBlock(c.block, c.index), c.text);
    }
}

// Each cut is a block of its own size on the heap, so that a read behind it is noticed.
TEST(StringBlock, EndsWithATruncatedBlock)
{
    const bytes whole = stringBlock({u"one", u"two", u"three"});
    for (size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        const bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(findInStringBlock(cut, 0).has_value(), size >= 8);
        EXPECT_EQ(findInStringBlock(cut, 2).has_value(), size >= 28);
        EXPECT_EQ(stringBlockIsWhole(cut), size == whole.size());
    }
    EXPECT_FALSE(findInStringBlock(bytes(32, 0xFF), 0)); // claims 65535 units
}

TEST(MuiFile, TellsWhatAFileIs)
{
    const auto block = stringBlock({u"text"});
    const struct {
        const char* what;
        std::vector<sampleResource_t> resources;
        bool sound, divided, described;
    } cases[] = {
        {"no resource", {}, true, false, false},
        {"strings of its own", {{6, 65, block}}, true, false, false},
        {"language file", {{0, 1, muiData(1, 2)}, {6, 65, block}}, true, true, true},
        {"up to the last checksum", {{0, 1, muiData(1, 2, 60)}}, true, true, true},
        {"last checksum cut", {{0, 1, muiData(1, 2, 59)}}, true, true, false},
        {"empty data", {{0, 1, {}}, {6, 65, block}}, true, true, false},
        {"other magic", {{0, 1, bytes(132)}}, true, true, false},
        {"MUI by another number", {{0, 2, muiData(1, 2)}}, true, false, false},
        {"string block cut", {{0, 1, muiData(1, 2)}, {6, 65, {4, 0, 'a', 0}}}, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const muiFile_t file = read(c.resources);
        EXPECT_EQ(file.sound, c.sound);
        EXPECT_EQ(file.divided, c.divided);
        EXPECT_EQ(file.described, c.described);
    }
}

TEST(MuiFile, IsUnsoundAtEveryLengthButItsOwn)
{
    const bytes whole = sampleImage({{0, 1, muiData(1, 2)}, {6, 65, stringBlock({u"text"})}});
    ASSERT_TRUE(readMuiFile(whole).described);
    for (size_t size = 0; size < whole.size(); ++size) {
        const bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        ASSERT_FALSE(readMuiFile(cut).sound) << size;
    }
}

TEST(MuiFile, ForgedPlacesMakeItUnsound)
{
    constexpr size_t firstType = sampleRoot + 16;
    constexpr size_t firstName = sampleRoot + 16 + 8 + 8; // behind one entry and the name MUI
    const struct {
        const char* what;
        size_t offset;
        uint32_t value;
        unsigned width;
    } cases[] = {
        {"new header far away", 0x3C, 0xFFFFFFF0, 4},
        {"kind of image", sampleOptionalHeader, 0x107, 2},
        {"optional header too short", 0x40 + 20, 100, 2},
        {"more sections than there are", 0x40 + 6, 0xFFFF, 2},
        {"resources in the headers", sampleResourceEntry, 0x80, 4},
        {"resources outside every section", sampleResourceEntry, 0x9000, 4},
        {"section data behind the file", sampleSectionHeader + 20, 0xFFFFFF00, 4},
        {"section larger than the file", sampleSectionHeader + 16, 0x7FFFFFFF, 4},
        {"entries behind the section", sampleRoot + 14, 0xFFFF, 2},
        {"type name behind the section", firstType, 0xFFFFFFF0, 4},
        {"type without names", firstType + 4, 0x10, 4},
        {"type that is its own name", firstType + 4, 0x80000000, 4},
        {"names behind the section", firstType + 4, 0xFFFFFFF0, 4},
        {"language that is a folder", firstName + 24 + 20, 0x80000000, 4},
        {"data entry behind the section", firstName + 24 + 20, 0x7FFFFFF0, 4},
        {"data outside every section", firstName + 48, 0x9000, 4},
        {"data longer than the section", firstName + 52, 0xFFFFFFFF, 4},
    };
    const bytes whole = sampleImage({{0, 1, muiData(1, 2)}});
    ASSERT_TRUE(readMuiFile(whole).described);
    for (const auto& c : cases) {
        bytes forged = whole;
        put(forged, c.offset, c.value, c.width);
        EXPECT_FALSE(readMuiFile(forged).sound) << c.what;
    }
}

// A directory may be named many times over; the walk has to end all the same.
TEST(MuiFile, RefusesATreeThatRepeatsItself)
{
    constexpr uint32_t count = 2000;
    constexpr uint32_t names = 16 + count * 8;
    bytes file = sampleImage({{23, 1, bytes(3 * names)}});
    for (uint32_t level = 0; level < 2; ++level) {
        const size_t at = sampleRoot + level * names;
        put(file, at + 14, count, 2);
        for (uint32_t i = 0; i < count; ++i) {
            put(file, at + 16 + i * 8, i, 4);
            put(file, at + 20 + i * 8, 0x80000000 | ((level + 1) * names), 4);
        }
    }
    EXPECT_FALSE(readMuiFile(file).sound);
}
