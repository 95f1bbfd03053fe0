#include "formats/der/dernode.h"
#include "formats/der/derreader.h"
#include "formats/der/derview.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace std::literals;
using bytes = std::vector<uint8_t>;

bytes hex(const std::string& text)
{
    bytes out;
    std::istringstream octets(text);
    for (unsigned octet = 0; octets >> std::hex >> octet;)
        out.push_back(static_cast<uint8_t>(octet));
    return out;
}

TEST(DerNode, WritesEachShapeAndLeavesEmptyNodesOut)
{
    const bytes octet{'x'};
    CDerTree node;
    node.SetSequence(5);
    node.Child(0).SetWide(u"\u20ac\0b"sv);
    node.Child(2).SetNarrow("a\0b"sv);
    node.Child(3).SetOctets(octet);
    node.Child(4).SetSequence(0);
    EXPECT_EQ(node.Encode(), hex("30 0F 1E 04 20 AC 00 00 04 02 61 00 04 01 78 30 00"));
    // The last is past what some platform decoders take.
    const std::pair<size_t, const char*> headers[] = {
        {0x7F, "04 7F"}, {0x80, "04 81 80"}, {0x4000001, "04 84 04 00 00 01"}};
    for (const auto& [length, header] : headers) {
        bytes expected = hex(header);
        const bytes zeros(length);
        node.SetOctets(zeros);
        expected.resize(expected.size() + length);
        EXPECT_EQ(node.Encode(), expected);
        EXPECT_EQ(CDerElement(expected).Octets().size(), length);
    }
}

TEST(DerReader, TakesWholeElementsAndNothingOnFailure)
{
    std::string indefinite = "04 80";
    for (int octet = 0; octet < 0x80; ++octet)
        indefinite += " 00";
    // Octets of header, 0 for a refusal, and of content.
    const std::tuple<std::string, size_t, size_t> cases[] = {
        {"04 01 41 FF", 2, 1},             // more bytes follow
        {"04 81 01 41", 3, 1},             // needlessly long length
        {"04 85 00 00 00 00 01 41", 0, 0}, // five
        {"04 84 FF FF FF FF 41", 0, 0},
        {indefinite, 0, 0},       // nor is it a length of 128
        {"1F 81 05 01 41", 4, 1}, // tag of three octets
        {"1F 81 85", 0, 0},       // tag without end
    };
    for (const auto& [text, header, length] : cases) {
        SCOPED_TRACE(text);
        const bytes whole = hex(text);
        for (size_t size = 0; size <= whole.size(); ++size) {
            const bytes input(whole.data(), whole.data() + size); // a read past it is seen
            const bool taken = header != 0 && size >= header + length;
            CDerReader reader(input);
            uint8_t tag = 0xEE;
            std::span<const uint8_t> contents;
            ASSERT_EQ(reader.ReadAny(tag, contents), taken) << size;
            EXPECT_EQ(tag, taken ? whole[0] : 0xEE);
            EXPECT_EQ(contents.data(), taken ? input.data() + header : nullptr);
            EXPECT_EQ(contents.size(), taken ? length : 0);
            EXPECT_EQ(reader.AtEnd(), size == (taken ? header + length : 0));
        }
    }
}

TEST(DerElement, ReadsWhatABlobWouldHoldAfterDecoding)
{
    // Encoded, wide text, octets if not the encoded ones, integer.
    const std::tuple<const char*, std::u16string_view, const char*, uint32_t> cases[] = {
        {"1E 04 20 AC 00 00", u"\u20ac", nullptr, 0},
        {"1E 03 00 41 07", u"A", nullptr, 0}, // no terminator, half a unit
        {"04 03 41 00 03", u"\u0304\u0041", "41 00 03", 0},
        {"1B 02 41 41", u"\u021B\u4141", nullptr, 0}, // GeneralString isn't read
        {"02 01 80", u"\u0102", nullptr, 0x80},       // unsigned
        {"02 04 FF 7F 00 01", u"\u0402\u7FFF\u0100", nullptr, 0xFF7F0001},
        {"16 03 41 42 43", u"\u4241", nullptr, 0}, // two octets a unit
        {"02 05 01 02 03 04 05", u"\u0502\u0201\u0403", nullptr, 0},
    };
    for (const auto& [text, wide, content, integer] : cases) {
        SCOPED_TRACE(text);
        const bytes encoded = hex(text), octets = content ? hex(content) : encoded;
        const CDerElement element(encoded);
        EXPECT_EQ(element.WideText(), wide);
        EXPECT_TRUE(std::ranges::equal(element.Octets(), octets));
        EXPECT_EQ(element.NarrowText(), std::string(octets.begin(), std::ranges::find(octets, 0)));
        EXPECT_EQ(element.Integer(), integer);
    }
}

TEST(Unicode, ReplacesWhatIsNoCharacterBothWays)
{
    constexpr auto utf8 = "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"sv;
    constexpr auto utf16 = u"\u0800\ud7ff\ue000\U00010000\U0010FFFF"sv;
    EXPECT_EQ(utf16FromUtf8(utf8), utf16);
    EXPECT_EQ(utf8FromUtf16(utf16), utf8);
    // Too long forms, half a pair, a text that ends early.
    EXPECT_EQ(utf16FromUtf8("\xC0\x80 \xE0\x9F\x80 \xED\xA0\x80 \xF0\x9F\x98"),
              u"\ufffd\ufffd \ufffd\ufffd\ufffd \ufffd\ufffd\ufffd \ufffd");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xD800, u'A', 0xDC00}), "\xEF\xBF\xBD\x41\xEF\xBF\xBD");
}

} // namespace
