#include "formats/resource/muifile.h"
#include "formats/resource/stringblock.h"
#include "support/sampleimage.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

// A block with these texts from index 0 on, and entries of length 0 after them.
bytes stringBlock(std::vector<std::u16string> texts)
{
    bytes block;
    texts.resize(stringsPerBlock);
    for (const std::u16string& text : texts)
        for (const char16_t unit : static_cast<char16_t>(text.size()) + text)
            block.insert(block.end(),
                         {static_cast<uint8_t>(unit), static_cast<uint8_t>(unit >> 8)});
    return block;
}

bytes muiData(size_t size = 132)
{
    bytes data(size);
    put(data, 0, {0xFECDFECD});
    return data;
}

bytes cut(const bytes& whole, size_t size)
{
    return bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
}

} // namespace

// Each cut is a block of its own size on the heap, so that a read after it is noticed.
TEST(StringBlock, FindsTheWantedEntryIfTheBlockReachesThere)
{
    const std::u16string withZero(u"a\0b", 3);
    std::vector<std::u16string> texts{u"first", u"", withZero, u"\u5bc6\u78bc"};
    texts.resize(stringsPerBlock);
    texts.back() = u"last";
    const bytes whole = stringBlock(texts);
    for (unsigned index = 0; index <= stringsPerBlock; ++index) {
        const bool there = index < stringsPerBlock && !texts[index].empty();
        EXPECT_EQ(findInStringBlock(whole, index),
                  there ? std::optional(texts[index]) : std::nullopt)
            << index;
    }
    for (size_t size = 0; size <= whole.size(); ++size) {
        EXPECT_EQ(findInStringBlock(cut(whole, size), 0).has_value(), size >= 12) << size;
        EXPECT_EQ(stringBlockIsWhole(cut(whole, size)), size == whole.size());
    }
    EXPECT_FALSE(findInStringBlock(bytes(32, 0xFF), 0)); // claims 65535 units
}

TEST(MuiFile, TellsWhatAFileIs)
{
    const auto block = stringBlock({u"text"});
    // Sound 1, divided 2, described 4.
    const std::pair<std::vector<sampleResource_t>, int> cases[] = {
        {{{6, 65, block}}, 1},          {{{0, 1, muiData()}, {6, 65, block}}, 7},
        {{{0, 1, muiData(60)}}, 7},                                // up to the last checksum
        {{{0, 1, muiData(59)}}, 3},     {{{0, 1, bytes(132)}}, 3}, // other magic
        {{{6, 65, {4, 0, 'a', 0}}}, 0},
    };
    for (const auto& row : cases) {
        const muiFile_t file = readMuiFile(sampleImage(row.first));
        EXPECT_EQ(file.sound + 2 * file.divided + 4 * file.described, row.second) << &row - cases;
    }
}

TEST(MuiFile, IsUnsoundWhenCutOrForged)
{
    const bytes whole = sampleImage({{0, 1, muiData()}, {6, 65, stringBlock({u"text"})}});
    ASSERT_TRUE(readMuiFile(whole).described);
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_FALSE(readMuiFile(cut(whole, size)).sound) << size;
    constexpr size_t firstType = sampleRoot + 16;
    constexpr size_t firstName = firstType + 16 + 8; // after two entries and the name MUI
    // The new header far away; resources in no section; section data longer than the file; entries,
    // a type's name and a language after the section; data too long.
    const std::pair<size_t, uint32_t> cases[] = {{0x3C, 0xFFFFFFF0},
                                                 {sampleResourceEntry, 0x9000},
                                                 {sampleSectionHeader + 16, 0x7FFFFFFF},
                                                 {sampleRoot + 12, 0xFFFF0000},
                                                 {firstType, 0xFFFFFFF0},
                                                 {firstType + 4, 0x80000000},
                                                 {firstName + 24 + 20, 0x7FFFFFF0},
                                                 {firstName + 52, 0xFFFFFFFF}};
    for (const auto& [offset, value] : cases) {
        bytes forged = whole;
        put(forged, offset, {value});
        EXPECT_FALSE(readMuiFile(forged).sound) << offset << ' ' << value;
    }
    // Three entries each: one more than 65,536 could be the first of very many.
    const auto soundWith = [](size_t count) {
        const sampleResource_t one{6, 65, stringBlock({u"text"})};
        return readMuiFile(sampleImage(std::vector<sampleResource_t>(count, one))).sound;
    };
    EXPECT_TRUE(soundWith(21845) && !soundWith(21846));
}
