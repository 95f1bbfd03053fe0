#include "backup/blob/dernode.h"
#include "backup/blob/derreader.h"
#include "backup/blob/derview.h"
#include "backup/blob/unicode.h"

#include <functional>
#include <random>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

TEST(DerNode, WritesEachShapeInItsShortestForm)
{
    const bytes content{0x41, 0x42};
    const struct {
        const char* what;
        std::function<void(CDerNode&)> fill;
        bytes der;
    } cases[] = {
        {"nothing", [](CDerNode&) {}, {}},
        {"empty sequence", [](CDerNode& n) { n.SetSequence(0); }, {0x30, 0x00}},
        {"empty wide text",
         [](CDerNode& n) { n.SetWide(std::u16string_view()); },
         {0x1E, 0x02, 0, 0}},
        {"wide text ends at its zero",
         [](CDerNode& n) { n.SetWide(std::u16string_view(u"\u20ac\0b", 3)); },
         {0x1E, 0x04, 0x20, 0xAC, 0, 0}},
        {"empty narrow text", [](CDerNode& n) { n.SetNarrow(""); }, {0x04, 0x01, 0}},
        {"narrow text ends at its zero",
         [](CDerNode& n) {
             n.SetNarrow({"a\0b", 3});
         },
         {0x04, 0x02, 0x61, 0}},
        {"empty octets", [](CDerNode& n) { n.SetOctets({}); }, {0x04, 0x00}},
        {"0", [](CDerNode& n) { n.SetInteger(0); }, {0x02, 0x01, 0x00}},
        {"1", [](CDerNode& n) { n.SetInteger(1); }, {0x02, 0x01, 0x01}},
        {"127", [](CDerNode& n) { n.SetInteger(127); }, {0x02, 0x01, 0x7F}},
        {"128",
         [](CDerNode& n) { n.SetInteger(128); },
         {0x02, 0x02, 0x00, 0x80}}, // the zero keeps it positive
        {"255", [](CDerNode& n) { n.SetInteger(255); }, {0x02, 0x02, 0x00, 0xFF}},
        {"32768", [](CDerNode& n) { n.SetInteger(32768); }, {0x02, 0x03, 0x00, 0x80, 0x00}},
        {"2^31", [](CDerNode& n) { n.SetInteger(0x80000000); }, {0x02, 0x04, 0x80, 0, 0, 0}},
        {"-128", [](CDerNode& n) { n.SetInteger(0xFFFFFF80); }, {0x02, 0x01, 0x80}},
        {"-129", [](CDerNode& n) { n.SetInteger(0xFFFFFF7F); }, {0x02, 0x02, 0xFF, 0x7F}},
        {"-1", [](CDerNode& n) { n.SetInteger(0xFFFFFFFF); }, {0x02, 0x01, 0xFF}},
        {"pair",
         [&](CDerNode& n) {
             n.SetSequence(2);
             n.Child(0).SetWide(std::u16string_view(u"a.vlm"));
             n.Child(1).SetOctets(content);
         },
         {0x30, 0x12, 0x1E, 0x0C, 0, 'a', 0,    '.',  0,    'v',
          0,    'l',  0,    'm',  0, 0,   0x04, 0x02, 0x41, 0x42}},
        {"an empty slot leaves no trace",
         [](CDerNode& n) {
             n.SetSequence(3);
             n.Child(0).SetInteger(1);
             n.Child(2).SetInteger(2);
         },
         {0x30, 0x06, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02}},
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
        {0x7F, {0x04, 0x7F}},
        {0x80, {0x04, 0x81, 0x80}},
        {0xFF, {0x04, 0x81, 0xFF}},
        {0x100, {0x04, 0x82, 0x01, 0x00}},
        {0x10000, {0x04, 0x83, 0x01, 0x00, 0x00}},
        {0x1000000, {0x04, 0x84, 0x01, 0x00, 0x00, 0x00}},
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
        {"tag alone", {0x04}, 0, 0},
        {"empty", {0x04, 0x00}, 2, 0},
        {"bytes behind", {0x04, 0x01, 0x41, 0xFF}, 2, 1},
        {"content cut short", {0x04, 0x02, 0x41}, 0, 0},
        {"needlessly long length", {0x04, 0x81, 0x01, 0x41}, 3, 1},
        {"four octets of length", {0x04, 0x84, 0, 0, 0, 1, 0x41}, 6, 1},
        {"five octets of length", {0x04, 0x85, 0, 0, 0, 0, 1, 0x41}, 0, 0},
        {"length cut short", {0x04, 0x82, 0x00}, 0, 0},
        {"length of 2^32-1", {0x04, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x41}, 0, 0},
        {"indefinite length", {0x30, 0x80, 0x04, 0x00, 0x00, 0x00}, 0, 0},
        {"reserved length", {0x04, 0xFF, 0x00}, 0, 0},
        {"tag of three octets", {0x1F, 0x81, 0x05, 0x01, 0x41}, 4, 1},
        {"tag without end", {0x1F, 0x81, 0x85}, 0, 0},
        {"long tag without length", {0x1F, 0x05}, 0, 0},
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
        {"BMPString",
         {0x1E, 4, 0x20, 0xAC, 0, 0},
         u"\u20ac",
         "\x1E\x04 \xAC",
         {0x1E, 4, 0x20, 0xAC, 0, 0},
         0},
        {"BMPString without its end", {0x1E, 2, 0, 0x41}, u"A", "\x1E\x02", {0x1E, 2, 0, 0x41}, 0},
        {"BMPString of odd length",
         {0x1E, 3, 0, 0x41, 7},
         u"A",
         "\x1E\x03",
         {0x1E, 3, 0, 0x41, 7},
         0},
        {"empty BMPString", {0x1E, 0}, u"", "\x1E", {0x1E, 0}, 0},
        {"UTF8String",
         {0x0C, 3, 0xC3, 0xA9, 0x42},
         u"\u00e9B",
         "\x0C\x03\xC3\xA9\x42",
         {0x0C, 3, 0xC3, 0xA9, 0x42},
         0},
        {"octet string", {0x04, 3, 0x41, 0, 3}, u"\u0304\u0041", "A", {0x41, 0, 3}, 0},
        {"general string",
         {0x1B, 2, 0x41, 0x41},
         u"\u021B\u4141",
         "\x1B\x02\x41\x41",
         {0x1B, 2, 0x41, 0x41},
         0},
        {"integer", {0x02, 1, 0x7F}, u"\u0102", "\x02\x01\x7F", {0x02, 1, 0x7F}, 0x7F},
        {"not sign-extended", {0x02, 1, 0xFF}, u"\u0102", "\x02\x01\xFF", {0x02, 1, 0xFF}, 0xFF},
        {"widest integer",
         {0x02, 4, 0x80, 0, 0, 0},
         u"\u0402\u0080",
         "\x02\x04\x80",
         {2, 4, 0x80, 0, 0, 0},
         0x80000000},
        {"five octets",
         {0x02, 5, 1, 2, 3, 4, 5},
         u"\u0502\u0201\u0403",
         "\2\5\1\2\3\4\5",
         {2, 5, 1, 2, 3, 4, 5},
         0},
        {"empty integer", {0x02, 0}, u"\u0002", "\x02", {0x02, 0}, 0},
        {"cut short", {0x04, 9, 0x41}, u"\u0904", "\x04\x09\x41", {0x04, 9, 0x41}, 0},
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
