#include "backup/blob/dernode.h"
#include "backup/blob/derreader.h"
#include "backup/blob/derview.h"
#include "backup/blob/unicode.h"

#include <functional>
#include <random>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

bytes hex(std::string_view text)
{
    bytes out;
    for (size_t i = 0; i < text.size(); i += 3)
        out.push_back(
            static_cast<uint8_t>(std::stoul(std::string(text.substr(i, 2)), nullptr, 16)));
    return out;
}

TEST(DerNode, WritesEachShapeInItsShortestForm)
{
    const bytes content{0x41, 0x42};
    const struct {
        const char* what;
        std::function<void(CDerNode&)> fill;
        bytes der;
    } cases[] = {
        {"nothing", [](CDerNode&) {}, {}},
        {"empty sequence", [](CDerNode& n) { n.SetSequence(0); }, hex("30 00")},
        {"empty wide text", [](CDerNode& n) { n.SetWide(std::u16string_view()); },
         hex("1E 02 00 00")},
        {"wide text ends at its zero",
         [](CDerNode& n) { n.SetWide(std::u16string_view(u"\u20ac\0b", 3)); },
         hex("1E 04 20 AC 00 00")},
        {"empty narrow text", [](CDerNode& n) { n.SetNarrow(""); }, hex("04 01 00")},
        {"narrow text ends at its zero",
         [](CDerNode& n) {
             n.SetNarrow({"a\0b", 3});
         },
         hex("04 02 61 00")},
        {"empty octets", [](CDerNode& n) { n.SetOctets({}); }, hex("04 00")},
        {"0", [](CDerNode& n) { n.SetInteger(0); }, hex("02 01 00")},
        {"1", [](CDerNode& n) { n.SetInteger(1); }, hex("02 01 01")},
        {"127", [](CDerNode& n) { n.SetInteger(127); }, hex("02 01 7F")},
        {"128", [](CDerNode& n) { n.SetInteger(128); },
         hex("02 02 00 80")}, // the zero keeps it positive
        {"255", [](CDerNode& n) { n.SetInteger(255); }, hex("02 02 00 FF")},
        {"32768", [](CDerNode& n) { n.SetInteger(32768); }, hex("02 03 00 80 00")},
        {"2^31", [](CDerNode& n) { n.SetInteger(0x80000000); }, hex("02 04 80 00 00 00")},
        {"-128", [](CDerNode& n) { n.SetInteger(0xFFFFFF80); }, hex("02 01 80")},
        {"-129", [](CDerNode& n) { n.SetInteger(0xFFFFFF7F); }, hex("02 02 FF 7F")},
        {"-1", [](CDerNode& n) { n.SetInteger(0xFFFFFFFF); }, hex("02 01 FF")},
        {"pair",
         [&](CDerNode& n) {
             n.SetSequence(2);
             n.Child(0).SetWide(std::u16string_view(u"a.vlm"));
             n.Child(1).SetOctets(content);
         },
         hex("30 12 1E 0C 00 61 00 2E 00 76 00 6C 00 6D 00 00 04 02 41 42")},
        {"an empty slot leaves no trace",
         [](CDerNode& n) {
             n.SetSequence(3);
             n.Child(0).SetInteger(1);
             n.Child(2).SetInteger(2);
         },
         hex("30 06 02 01 01 02 01 02")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CDerNode node;
        c.fill(node);
        EXPECT_EQ(node.Encode(), c.der);
    }
}

TEST(DerNode, LengthsGrowAnOctetAtEachPower)
{
    const struct {
        size_t length;
        bytes header;
    } cases[] = {
        {0x7F, hex("04 7F")},
        {0x80, hex("04 81 80")},
        {0xFF, hex("04 81 FF")},
        {0x100, hex("04 82 01 00")},
        {0x10000, hex("04 83 01 00 00")},
        {0x1000000, hex("04 84 01 00 00 00")},
        {0x4000001, hex("04 84 04 00 00 01")}, // past what some platform decoders take
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.length);
        const bytes content(c.length, 0xA5);
        CDerNode node;
        node.SetOctets(content);
        bytes der = node.Encode();
        ASSERT_EQ(der.size(), c.header.size() + c.length);
        EXPECT_TRUE(std::equal(c.header.begin(), c.header.end(), der.begin()));
        EXPECT_EQ(der.back(), 0xA5);
        EXPECT_EQ(CDerElement(der).Octets().size(), c.length);
    }
}

// A copy that ends where its heap block ends, so that a read past it is seen.
struct exactly {
    explicit exactly(const bytes& from) : size(from.size()), memory(new uint8_t[size])
    {
        std::copy(from.begin(), from.end(), memory.get());
    }
    std::span<const uint8_t> first(size_t count) const { return {memory.get(), count}; }
    size_t size;
    std::unique_ptr<uint8_t[]> memory;
};

TEST(DerReader, TakesWholeElementsAndNothingOnFailure)
{
    const struct {
        const char* what;
        bytes input;
        size_t header; // 0: refused
        size_t length;
    } cases[] = {
        {"nothing", {}, 0, 0},
        {"tag alone", hex("04"), 0, 0},
        {"empty", hex("04 00"), 2, 0},
        {"bytes behind", hex("04 01 41 FF"), 2, 1},
        {"content cut short", hex("04 02 41"), 0, 0},
        {"needlessly long length", hex("04 81 01 41"), 3, 1},
        {"four octets of length", hex("04 84 00 00 00 01 41"), 6, 1},
        {"five octets of length", hex("04 85 00 00 00 00 01 41"), 0, 0},
        {"length cut short", hex("04 82 00"), 0, 0},
        {"length of 2^32-1", hex("04 84 FF FF FF FF 41"), 0, 0},
        {"indefinite length", hex("30 80 04 00 00 00"), 0, 0},
        {"reserved length", hex("04 FF 00"), 0, 0},
        {"tag of three octets", hex("1F 81 05 01 41"), 4, 1},
        {"tag without end", hex("1F 81 85"), 0, 0},
        {"long tag without length", hex("1F 05"), 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const exactly input(c.input);
        CDerReader reader(input.first(input.size));
        uint8_t tag = 0xEE;
        std::span<const uint8_t> contents;
        EXPECT_EQ(reader.ReadAny(tag, contents), c.header != 0);
        if (c.header != 0) {
            EXPECT_EQ(contents.data(), input.memory.get() + c.header);
            EXPECT_EQ(contents.size(), c.length);
            EXPECT_EQ(reader.AtEnd(), c.header + c.length == input.size);
            continue;
        }
        EXPECT_EQ(tag, 0xEE);
        EXPECT_EQ(contents.data(), nullptr);
        EXPECT_EQ(reader.AtEnd(), c.input.empty());
    }
}

TEST(DerElement, ReadsWhatABlobWouldHoldAfterDecoding)
{
    const struct {
        const char* what;
        bytes encoded;
        std::u16string wide;
        std::string narrow;
        bytes octets;
        uint32_t integer;
    } cases[] = {
        {"missing", {}, u"", "", {}, 0},
        {"BMPString", hex("1E 04 20 AC 00 00"), u"\u20ac", "\x1E\x04 \xAC",
         hex("1E 04 20 AC 00 00"), 0},
        {"BMPString without its end", hex("1E 02 00 41"), u"A", "\x1E\x02", hex("1E 02 00 41"), 0},
        {"BMPString of odd length", hex("1E 03 00 41 07"), u"A", "\x1E\x03", hex("1E 03 00 41 07"),
         0},
        {"empty BMPString", hex("1E 00"), u"", "\x1E", hex("1E 00"), 0},
        {"UTF8String", hex("0C 03 C3 A9 42"), u"\u00e9B", "\x0C\x03\xC3\xA9\x42",
         hex("0C 03 C3 A9 42"), 0},
        {"octet string", hex("04 03 41 00 03"), u"\u0304\u0041", "A", hex("41 00 03"), 0},
        {"general string", hex("1B 02 41 41"), u"\u021B\u4141", "\x1B\x02\x41\x41",
         hex("1B 02 41 41"), 0},
        {"integer", hex("02 01 7F"), u"\u0102", "\x02\x01\x7F", hex("02 01 7F"), 0x7F},
        {"not sign-extended", hex("02 01 FF"), u"\u0102", "\x02\x01\xFF", hex("02 01 FF"), 0xFF},
        {"widest integer", hex("02 04 80 00 00 00"), u"\u0402\u0080", "\x02\x04\x80",
         hex("02 04 80 00 00 00"), 0x80000000},
        {"five octets", hex("02 05 01 02 03 04 05"), u"\u0502\u0201\u0403", "\2\5\1\2\3\4\5",
         hex("02 05 01 02 03 04 05"), 0},
        {"empty integer", hex("02 00"), u"\u0002", "\x02", hex("02 00"), 0},
        {"cut short", hex("04 09 41"), u"\u0904", "\x04\x09\x41", hex("04 09 41"), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const exactly encoded(c.encoded);
        const CDerElement element(encoded.first(encoded.size));
        EXPECT_EQ(element.WideText(), c.wide);
        EXPECT_EQ(element.NarrowText(), c.narrow);
        EXPECT_EQ(bytes(element.Octets().begin(), element.Octets().end()), c.octets);
        EXPECT_EQ(element.Integer(), c.integer);
    }
    for (const uint8_t tag :
         bytes{0x12, 0x13, 0x14, 0x15, 0x16, 0x19, 0x1A}) { // eight-bit kinds: two octets a unit
        SCOPED_TRACE(tag);
        EXPECT_EQ(CDerElement(bytes{tag, 3, 0x41, 0x42, 0x43}).WideText(), u"\u4241");
    }
}

TEST(DerSequenceView, RefusesAsAWholeAndKeepsWhatItHad)
{
    CDerSequenceView view;
    ASSERT_TRUE(view.Decode(
        bytes{0x30, 0x05, 0x04, 0x00, 0x30, 0x01, 0xFF, 0xEE})); // not looked into; a byte behind
    ASSERT_EQ(view.Count(), 2u);
    for (const bytes& bad :
         {bytes{}, bytes{0x30}, bytes{0x30, 3, 4, 2, 7}, bytes{0x30, 3, 4, 0, 4}, bytes{0x31, 0}}) {
        EXPECT_FALSE(view.Decode(bad));
        EXPECT_EQ(view.Count(), 2u);
    }
    EXPECT_TRUE(view[2].Encoded().empty());
    EXPECT_TRUE(view.Decode(bytes{0x30, 0x00}));
    EXPECT_EQ(view.Count(), 0u);
}

// A tree of random shape in two forms: the node to write and what must be read back.
struct model {
    bytes octets;
    std::vector<model> children;
    bool isSequence = false;
};

model randomTree(std::mt19937& random, CDerNode& node, unsigned depth)
{
    model m;
    m.isSequence = depth > 0 && random() % 3 != 0;
    if (m.isSequence) {
        m.children.resize(random() % 6);
        node.SetSequence(m.children.size());
        for (size_t i = 0; i < m.children.size(); ++i)
            m.children[i] = randomTree(random, node.Child(i), depth - 1);
        return m;
    }
    m.octets.resize(random() % 4 == 0 ? random() % 70000 : random() % 140);
    for (uint8_t& octet : m.octets)
        octet = static_cast<uint8_t>(random());
    const auto kept = std::make_shared<bytes>(m.octets); // the node alone keeps the bytes alive
    node.SetOctets(*kept, kept);
    return m;
}

void expectSame(const model& m, const CDerElement& element)
{
    CDerSequenceView view;
    ASSERT_EQ(view.Decode(element), m.isSequence);
    ASSERT_EQ(view.Count(), m.children.size());
    for (size_t i = 0; i < m.children.size(); ++i)
        ASSERT_NO_FATAL_FAILURE(expectSame(m.children[i], view[i]));
    std::span<const uint8_t> octets;
    ASSERT_EQ(element.DecodeOctets(octets), !m.isSequence);
    ASSERT_TRUE(std::equal(octets.begin(), octets.end(), m.octets.begin(), m.octets.end()));
}

TEST(Der, RandomTreesComeBackAndEveryCutIsRefused)
{
    std::mt19937 random(20210);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        CDerNode node;
        const model m = randomTree(random, node, 4);
        const exactly der(node.Encode());
        ASSERT_NO_FATAL_FAILURE(expectSame(m, CDerElement(der.first(der.size))));
        const size_t step = 1 + der.size / 60;
        for (size_t cut = 0; cut < der.size; cut += step) {
            std::span<const uint8_t> element;
            ASSERT_FALSE(
                CDerReader(exactly(bytes(der.memory.get(), der.memory.get() + cut)).first(cut))
                    .ReadElement(element));
        }
    }
}

TEST(Unicode, ReplacesWhatIsNoCharacterBothWays)
{
    const struct {
        std::string utf8;
        std::u16string utf16;
        bool exact; // comes back as it was
    } cases[] = {
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3), true},
        {"\x7F\xC2\x80\xDF\xBF", u"\u007f\u0080\u07ff", true},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\ud7ff\ue000\uffff", true},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF", true},
        {"\xC0\x80", u"\ufffd\ufffd", false},
        {"\xE0\x9F\x80\x41", u"\ufffd\ufffd\ufffdA", false},
        {"\xED\xA0\x80", u"\ufffd\ufffd\ufffd", false},
        {"\xF0\x9F\x98", u"\ufffd", false},
        {"\xE2\x82\x41", u"\ufffdA", false},
        {"\xF5\xFF", u"\ufffd\ufffd", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.utf8));
        EXPECT_EQ(utf16FromUtf8(c.utf8), c.utf16);
        EXPECT_EQ(utf8FromUtf16(c.utf16) == c.utf8, c.exact);
    }
    const char16_t lone[] = {0xD800, u'A', 0xDC00};
    EXPECT_EQ(utf8FromUtf16({lone, 3}), "\xEF\xBF\xBD"
                                        "A"
                                        "\xEF\xBF\xBD");
}

} // namespace
