#include "backup/blob/backupview.h"
#include "backup/blob/dernode.h"
#include "commands.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;
using text = std::u16string_view;

template <class Fill> bytes encoded(Fill fill)
{
    CDerNode node;
    fill(node);
    return node.Encode();
}

bytes wide(text value)
{
    return encoded([&](CDerNode& node) { node.SetWide(value); });
}

bytes narrow(std::string_view value)
{
    return encoded([&](CDerNode& node) { node.SetNarrow(value); });
}

bytes number(uint32_t value)
{
    return encoded([&](CDerNode& node) { node.SetInteger(value); });
}

bytes octets(const bytes& value)
{
    return encoded([&](CDerNode& node) { node.SetOctets(value); });
}

bytes seq(std::initializer_list<bytes> items)
{
    bytes content;
    for (const bytes& item : items)
        content.insert(content.end(), item.begin(), item.end());
    bytes out = octets(content);
    out[0] = 0x30;
    return out;
}

bytes file(text name, const bytes& content = {})
{
    return seq({wide(name), octets(content)});
}

bytes link(text name, text manifest = u"a.vlm")
{
    return seq(
        {wide(name), wide(u"https://t.test"), wide(manifest), number(3), wide(u"id"), number(1)});
}

const bytes none = seq({});
const bytes document = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":"Ctrl+Win+72",)"
                                   R"("show_training_prompt":true,"useGrabbingCreds":false}}})")});

bytes backup(const bytes& files, const bytes& links = none, const bytes& categories = none,
             const bytes& settings = document)
{
    return seq({files, links, categories, settings});
}

// The smallest export: 114 bytes of document, 214 in all.
const bytes example =
    backup(seq({file(u"a.vlm", {'A', 'B'}), file(u"updata.vls"), file(u"updata_temp.vls")}));

TEST(BackupView, ReadsEachVersionByItsPositions)
{
    CBackupView view;
    ASSERT_EQ(example.size(), 214u);
    EXPECT_EQ((bytes{example.begin(), example.begin() + 5}), (bytes{0x30, 0x81, 0xD3, 0x30, 0x56}));
    ASSERT_TRUE(view.Decode(example));
    EXPECT_TRUE(view.findings.empty());
    ASSERT_EQ(view.files.size(), 3u);
    EXPECT_EQ(view.files[0].name, "a.vlm");
    EXPECT_EQ((bytes{view.files[0].content.begin(), view.files[0].content.end()}),
              (bytes{'A', 'B'}));
    EXPECT_EQ(view.settings.document.size(), 114u);

    const bytes oldLink =
        seq({narrow("n\xC3\xA9"), narrow("t"), narrow("a.vlm"), number(0xFFFFFFFF), narrow("id")});
    const bytes two = seq({none, seq({oldLink})});
    ASSERT_TRUE(view.Decode(two));
    EXPECT_TRUE(view.Sound());
    ASSERT_EQ(view.links.size(), 1u);
    EXPECT_EQ(view.links[0].name, "n\xC3\xA9");
    EXPECT_EQ(view.links[0].profile, 0xFFu);
    EXPECT_FALSE(view.links[0].wocred);

    const bytes three = seq({none, seq({link(u"\u00e9")}), seq({seq({wide(u"c"), wide(u"t")})})});
    ASSERT_TRUE(view.Decode(three));
    EXPECT_TRUE(view.Sound());
    EXPECT_EQ(view.links.at(0).name, "\xC3\xA9");
    EXPECT_TRUE(view.links[0].wocred);
    EXPECT_EQ(view.categories.at(0).text, "t");

    const bytes list = octets({'x'});
    const bytes legacy = backup(none, none, none, seq({number(1), wide(u"Ctrl+1"), list}));
    ASSERT_TRUE(view.Decode(legacy));
    EXPECT_EQ(view.settings.form, SettingsForm::legacy);
    EXPECT_TRUE(view.settings.showPrompt);
    EXPECT_EQ(view.settings.hotKey, "Ctrl+1");
    EXPECT_EQ((bytes{view.settings.dontPromptList.begin(), view.settings.dontPromptList.end()}),
              list);

    const bytes five = seq({none, none, none, document, none});
    ASSERT_TRUE(view.Decode(five));
    EXPECT_EQ(view.settings.form, SettingsForm::absent); // a restore leaves the settings alone
}

TEST(BackupView, TellsWhatIsAmissAndWhere)
{
    bytes withTail = example;
    withTail.push_back(0);
    const bytes cut(example.begin(), example.end() - 1);
    const struct {
        bytes backup;
        bool sound;
        std::string where;
        std::string what; // a part of it
    } cases[] = {
        {{}, false, "backup", "not a well-formed"},
        {cut, false, "backup", "not a well-formed"},
        {seq({none}), false, "backup", "1 element where"},
        {withTail, true, "backup", "1 byte behind"},
        {seq({none, none}), true, "backup", "2 elements"},
        {backup(number(1)), false, "templates", "not a sequence"},
        {backup(seq({number(1)})), false, "templates[0]", "not a sequence"},
        {backup(seq({file(u"a.vlm"), seq({wide(u"b.vlm")})})), false, "templates[1]",
         "1 element in a pair"},
        {backup(seq({seq({wide(u"a.vlm"), number(1)})})), false, "templates[0]", "octet string"},
        {backup(seq({file(u"")})), false, "templates[0]", "no name"},
        {backup(seq({seq({narrow("a.vlm"), none})})), false, "templates[0] name",
         "not a wide text"},
        {backup(seq({seq({bytes{0x1E, 2, 0, 'a'}, octets({})})})), false, "templates[0] name",
         "terminating zero"},
        {backup(seq({seq({bytes{0x1E, 0}, octets({})})})), false, "templates[0] name",
         "terminating zero"},
        {backup(seq({seq({bytes{0x0C, 1, 'a'}, octets({})})})), false, "templates[0] name",
         "another kind"},
        {backup(seq({file(u"C:\\x\\y.vlm")})), false, "templates[0]", "holds a path"},
        {backup(seq({file(u"../y.vlm")})), false, "templates[0]", "climbs"},
        {backup(seq({file(u"run.exe")})), false, "templates[0]", "no template"},
        {backup(seq({file(u"CON.vlm")})), false, "templates[0]", "none that a file can have"},
        {backup(seq({file(u"alien|C:\\a\\b.vlm")})), true, "", ""},
        {backup(seq({file(u"alien|C:\\a\\b.vls")})), false, "templates[0]", "no template"},
        {backup(seq({file(u"alien|\\\\s\\h\\b.vlm")})), false, "templates[0]", "on a drive"},
        {backup(seq({file(u"alien|C:\\a\\..\\b.vlm")})), false, "templates[0]", "climbs"},
        {backup(seq({file(u"alien|C:\\a.exe:b.vlm")})), false, "templates[0]", "stream"},
        {backup(none, seq({seq({wide(u"n")})})), false, "quicklinks[0]", "drops the record"},
        {backup(none, seq({link(u"n", u"..\\a.vlm")})), false, "quicklinks[0]",
         "manifest holds a path"},
        {backup(none, seq({seq({wide(u""), wide(u""), wide(u""), wide(u""), wide(u"")})})), false,
         "quicklinks[0] profile", "not an integer"},
        {backup(none, none, seq({seq({wide(u"n")})})), false, "categories[0]",
         "1 element in a pair"},
        {backup(none, none, none, none), false, "settings", "no elements"},
        {backup(none, none, none, seq({narrow("")})), false, "settings", "an empty document"},
        {backup(none, none, none, seq({octets({'{', '}'})})), false, "settings document",
         "terminating zero"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.where + ": " + c.what);
        CBackupView view;
        view.Decode(c.backup);
        EXPECT_EQ(view.Sound(), c.sound);
        bool told = c.where.empty() && view.findings.empty();
        for (const BackupFinding& finding : view.findings)
            told = told ||
                   (finding.where == c.where && finding.what.find(c.what) != std::string::npos);
        EXPECT_TRUE(told);
    }
}

struct run {
    int status;
    std::string out, err;
};

run vlbackup(std::vector<std::string> arguments, const bytes& input)
{
    std::istringstream in(std::string(input.begin(), input.end()));
    std::ostringstream out, err;
    const int status = runVlbackup(std::move(arguments), in, out, err);
    return {status, out.str(), err.str()};
}

TEST(Vlbackup, CommandsAnswerWithStatusAndText)
{
    const bytes content{0, '\r', '\n', 0x1A, 0xFF};
    const bytes twice = backup(seq({file(u"\u00e9.vlm", {'x'}), file(u"\u00e9.vlm", content)}));
    const bytes escape = backup(none, seq({link(u"\u001b[31m")}));
    const bytes badDocument = backup(none, none, none, seq({narrow("{")}));
    const struct {
        std::vector<std::string> arguments;
        bytes input;
        int status;
        std::string out; // a part of it
        std::string err; // a part of its one line
    } cases[] = {
        {{"ls", "-"}, example, 0, "         2  a.vlm\n", ""},
        {{"ls", "-"}, escape, 0, "  \\x1b[31m -> ", ""},
        {{"ls", "-", "--json"}, twice, 0, "\"name\": \"\xC3\xA9.vlm\"", ""},
        {{"info", "-"}, example, 0, "214 bytes, 4 elements", ""},
        {{"--json", "info", "-"}, example, 0, "\"templates\": 3", ""},
        {{"cat", "-", "\xC3\xA9.vlm"},
         twice,
         0,
         std::string(content.begin(), content.end()),
         ""}, // the last one
        {{"cat", "-", "settings"}, example, 0, "\"useGrabbingCreds\":false}}}", ""},
        {{"cat", "-", "a.vlm", "--json"}, example, 0, "\"base64\": \"QUI=\"", ""},
        {{"cat", "-", "b.vlm"}, example, 2, "", "no b.vlm in -"},
        {{"verify", "-"}, example, 0, "sound\n", ""},
        {{"verify", "-"}, badDocument, 1, "malformed: settings: the document isn't JSON", ""},
        {{"verify", "-", "--json"}, {}, 1, "\"sound\": false", ""},
        {{"info", "-"}, {}, 2, "", "- is no backup"},
        {{"info", "no-such-file"}, {}, 2, "", "can't read no-such-file"},
        {{"diff", "-", "-"}, {}, 2, "", "both"},
        {{"ls"}, {}, 2, "", "required"},
        {{"--help"}, {}, 0, "verify", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const run result = vlbackup(c.arguments, c.input);
        EXPECT_EQ(result.status, c.status);
        EXPECT_NE(result.out.find(c.out), std::string::npos) << result.out;
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), c.status == 2 ? 1 : 0);
    }
}

} // namespace
