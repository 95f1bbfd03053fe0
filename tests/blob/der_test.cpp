#include "backup/blob/dernode.h"

#include <functional>

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

} // namespace
