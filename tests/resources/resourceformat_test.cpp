#include "resources/muifile.h"
#include "resources/stringblock.h"
#include "sampleimage.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

// A block with these texts from index 0 on, and entries of length 0 behind them.
bytes stringBlock(std::vector<std::u16string> texts)
{
    bytes block;
    texts.resize(stringsPerBlock);
    for (const std::u16string& text : texts) {
        block.resize(block.size() + 2);
        put(block, block.size() - 2, static_cast<uint32_t>(text.size()), 2);
        for (const char16_t unit : text)
            block.insert(block.end(),
                         {static_cast<uint8_t>(unit), static_cast<uint8_t>(unit >> 8)});
    }
    return block;
}

bytes muiData(size_t size = 132)
{
    bytes data(size);
    put(data, 0, size ? 0xFECDFECD : 0, size ? 4 : 0);
    return data;
}

bytes cut(const bytes& whole, size_t size)
{
    return bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
}

} // namespace

// Each cut is a block of its own size on the heap, so that a read behind it is noticed.
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
        EXPECT_EQ(findInStringBlock(cut(whole, size), 2).has_value(), size >= 22) << size;
        EXPECT_EQ(stringBlockIsWhole(cut(whole, size)), size == whole.size());
    }
    EXPECT_FALSE(findInStringBlock(bytes(32, 0xFF), 0)); // claims 65535 units
}

TEST(MuiFile, TellsWhatAFileIs)
{
    const auto block = stringBlock({u"text"});
    const struct {
        const char* what;
        std::vector<sampleResource_t> resources;
        const char* file;
    } cases[] = {
        {"no resource", {}, "sound"},
        {"strings of its own", {{6, 65, block}}, "sound"},
        {"language file", {{0, 1, muiData()}, {6, 65, block}}, "sound divided described"},
        {"up to the last checksum", {{0, 1, muiData(60)}}, "sound divided described"},
        {"last checksum cut", {{0, 1, muiData(59)}}, "sound divided"},
        {"empty data", {{0, 1, {}}, {6, 65, block}}, "sound divided"},
        {"other magic", {{0, 1, bytes(132)}}, "sound divided"},
        {"MUI by another number", {{0, 2, muiData()}}, "sound"},
        {"string block cut", {{0, 1, muiData()}, {6, 65, {4, 0, 'a', 0}}}, ""},
    };
    for (const auto& c : cases) {
        const muiFile_t file = readMuiFile(sampleImage(c.resources));
        EXPECT_EQ(std::string(file.sound ? "sound" : "") + (file.divided ? " divided" : "") +
                      (file.described ? " described" : ""),
                  c.file)
            << c.what;
    }
}

TEST(MuiFile, IsUnsoundWhenCutOrForged)
{
    const bytes whole = sampleImage({{0, 1, muiData()}, {6, 65, stringBlock({u"text"})}});
    ASSERT_TRUE(readMuiFile(whole).described);
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_FALSE(readMuiFile(cut(whole, size)).sound) << size;
    constexpr size_t firstType = sampleRoot + 16;
    constexpr size_t firstName = firstType + 16 + 8; // behind two entries and the name MUI
    const struct {
        size_t offset;
        uint32_t value;
    } cases[] = {
        {0x3C, 0xFFFFFFF0},                     // new header far away
        {sampleOptionalHeader, 0x107},          // kind of image
        {sampleResourceEntry, 0x80},            // resources in the headers
        {sampleResourceEntry, 0x9000},          // resources outside every section
        {sampleSectionHeader + 20, 0xFFFFFF00}, // section data behind the file
        {sampleSectionHeader + 16, 0x7FFFFFFF}, // section larger than the file
        {sampleRoot + 12, 0xFFFF0000},          // entries behind the section
        {firstType, 0xFFFFFFF0},                // type name behind the section
        {firstType + 4, 0x10},                  // type without names
        {firstType + 4, 0x80000000},            // type that is its own name
        {firstName + 24 + 20, 0x80000000},      // language that is a folder
        {firstName + 24 + 20, 0x7FFFFFF0},      // data entry behind the section
        {firstName + 48, 0x9000},               // data outside every section
        {firstName + 52, 0xFFFFFFFF},           // data longer than the section
    };
    for (const auto& c : cases) {
        bytes forged = whole;
        put(forged, c.offset, c.value, 4);
        EXPECT_FALSE(readMuiFile(forged).sound) << &c - cases;
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
