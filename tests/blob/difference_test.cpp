#include "backup/blob/dernode.h"
#include "difference.h"

#include <functional>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

void fillPair(CDerNode& node, std::u16string_view name, std::u16string_view value)
{
    node.SetSequence(2);
    node.Child(0).SetWide(name);
    node.Child(1).SetWide(value);
}

// Two files, a link, two categories of one name and a document.
void fillBackup(CDerNode& top)
{
    top.SetSequence(4);
    top.Child(0).SetSequence(2);
    for (size_t i = 0; i < 2; ++i) {
        CDerNode& pair = top.Child(0).Child(i);
        pair.SetSequence(2);
        pair.Child(0).SetWide(std::u16string_view(i == 0 ? u"a.vlm" : u"b.vlm"));
        pair.Child(1).SetOctets({});
    }
    top.Child(1).SetSequence(1);
    CDerNode& link = top.Child(1).Child(0);
    link.SetSequence(6);
    for (const size_t i : {0U, 1U, 2U, 4U})
        link.Child(i).SetWide(std::u16string_view(u"link"));
    link.Child(3).SetInteger(7);
    link.Child(5).SetInteger(0);
    top.Child(2).SetSequence(2);
    fillPair(top.Child(2).Child(0), u"c", u"1");
    fillPair(top.Child(2).Child(1), u"c", u"2");
    top.Child(3).SetSequence(1);
    top.Child(3).Child(0).SetNarrow(R"({"settings":{"current":{"a":1,"b":"x"}}})");
}

TEST(CompareBackups, NamesEachDifference)
{
    static const bytes content{1, 2, 3};
    const struct {
        const char* what;
        std::function<void(CDerNode&)> change;
        std::vector<std::string> differences;
    } cases[] = {
        {"none", [](CDerNode&) {}, {}},
        {"content",
         [](CDerNode& n) { n.Child(0).Child(1).Child(1).SetOctets(content); },
         {"templates|b.vlm|content: 0 and 3 bytes that differ"}},
        {"file gone",
         [](CDerNode& n) { n.Child(0).Child(0) = CDerNode(); },
         {"templates|a.vlm|only in the first"}},
        {"file renamed",
         [](CDerNode& n) { n.Child(0).Child(0).Child(0).SetWide(std::u16string_view(u"c.vlm")); },
         {"templates|a.vlm|only in the first", "templates|c.vlm|only in the second"}},
        {"order",
         [](CDerNode& n) { std::swap(n.Child(0).Child(0), n.Child(0).Child(1)); },
         {"templates||in another order"}},
        {"link",
         [](CDerNode& n) { n.Child(1).Child(0).Child(3).SetInteger(8); },
         {"quicklinks|link|profile: \"7\" and \"8\""}},
        {"second of a name",
         [](CDerNode& n) { fillPair(n.Child(2).Child(1), u"c", u"3"); },
         {"categories|c|text: \"2\" and \"3\""}},
        {"member",
         [](CDerNode& n) {
             n.Child(3).Child(0).SetNarrow(R"({"settings":{"current":{"a":1,"b":"y"}}})");
         },
         {"settings|settings.current.b|value: \"\"x\"\" and \"\"y\"\""}},
        {"form alone",
         [](CDerNode& n) {
             n.Child(3).Child(0).SetNarrow(R"({"settings":{"current":{"b":"x","a":1}}})");
         },
         {"backup|element 3|encoded differently"}},
    };
    CDerNode original;
    fillBackup(original);
    const bytes before = original.Encode();
    CBackupView first;
    ASSERT_TRUE(first.Decode(before));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CDerNode changed;
        fillBackup(changed);
        c.change(changed);
        const bytes after = changed.Encode();
        CBackupView second;
        ASSERT_TRUE(second.Decode(after));
        std::vector<std::string> told;
        for (const BackupDifference& d : compareBackups(first, second))
            told.push_back(d.element + "|" + d.item + "|" + d.what);
        EXPECT_EQ(told, c.differences);
    }
}

} // namespace
