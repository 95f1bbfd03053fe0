#include "commands.h"
#include "support/backupbytes.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace {

bytes link(const std::wstring& name, const std::wstring& manifest = L"a.vlm", uint8_t profile = 7)
{
    return seq({wide(name), wide(L"t"), wide(manifest), integer(profile), wide(L"id"), integer(1)});
}

bytes settings(const std::string& members)
{
    return seq({narrow("{\"settings\":{\"current\":{" + members + "}}}")});
}

const bytes none = seq({}), a = filePair(L"a.vlm", "AB"), b = filePair(L"b.vlm", {});
const std::vector<bytes> parts = {seq({a, b}), seq({link(L"l")}),
                                  seq({seq({wide(L"c"), wide(L"1")})}),
                                  settings(R"("a":1,"path_dontpromptlist_filename":"x")")};
const bytes example = seq(parts);

// A backup with one of its elements replaced.
bytes with(size_t position, const bytes& element)
{
    std::vector<bytes> changed = parts;
    changed[position] = element;
    return seq(changed);
}

bytes stored(const std::wstring& name)
{
    return with(0, seq({filePair(name, {})}));
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
    const std::vector<std::string> ls = {"ls", "-"}, verify = {"verify", "-"};
    const bytes odd = filePair(L"\u00e9.vlm", {"\0\r\n\x1A\xFF", 5});
    const bytes oldLink =
        seq({narrow("n\xC3\xA9"), narrow("t"), narrow("m"), integer(0xFF), narrow("i")});
    const bytes two = seq({none, seq({oldLink})}), three = seq({none, parts[1], parts[2]});
    const bytes legacy = with(3, seq({integer(1), wide(L"Alt+1"), octets("x")}));
    const struct {
        std::vector<std::string> arguments;
        bytes input;
        int status;
        std::string told; // a part of the output, or of the one line of a failure
    } cases[] = {
        {ls, example, 0, "         2  a.vlm\n"},
        {ls, with(1, seq({link(L"\u001b[31m")})), 0, "  \\x1b[31m -> "},
        {ls, two, 0, "n\xC3\xA9 -> t  (m, profile 255, id i)\n"},
        {ls, three, 0, "without credentials)\ncategories\n  c = 1\nsettings (absent)\n"},
        {ls, seq({none, none, none, parts[3], none}), 0, "settings (absent)"}, // of five
        {ls, legacy, 0, "prompt: show\n  hot key: Alt+1\n  do-not-prompt list: 3 bytes"},
        {{"ls", "-", "--json"}, seq({seq({odd}), none}), 0, "\"name\": \"\xC3\xA9.vlm\""},
        {{"cat", "-", "\xC3\xA9.vlm"}, with(0, seq({odd, odd})), 0, {"\0\r\n\x1A\xFF", 5}},
        {{"cat", "-", "a.vlm"}, with(0, seq({filePair(L"a.vlm", {}), a})), 0, "AB"}, // the last one
        {{"cat", "-", "settings"}, example, 0, "_filename\":\"x\"}}}"},
        {{"verify", "-", "--json"}, {}, 1, "\"sound\": false"},
        {verify, {example.begin(), example.end() - 1}, 1, "malformed: backup: not a well-formed"},
        {verify, with(0, seq({integer(1)})), 1, "malformed: templates[0]: not a sequence"},
        {verify, with(0, seq({a, seq({wide(L"")})})), 1, "templates[1]: 1 element in a pair"},
        {verify, with(0, seq({seq({tlv(0x1E, {0, 'a'}), none})})), 1, "terminating zero"},
        {verify, with(0, seq({seq({tlv(0x0C, {'a'}), none})})), 1, "another kind"},
        {verify, stored(L"C:\\x\\y.vlm"), 1, "hostile: templates[0]: the name holds a path"},
        {verify, stored(L"CON.vlm"), 1, "none that a file can have"},
        {verify, stored(L"alien|C:\\a\\b.vlm"), 0, "sound\n"},
        {verify, stored(L"alien|C:\\a.exe:b.vlm"), 1, "stream"},
        {verify, with(1, seq({seq({wide(L"")})})), 1, "quicklinks[0]: 1 element; a restore drops"},
        {verify, with(1, seq({link(L"n", L"..\\a.vlm")})), 1, "the manifest holds a path"},
        {verify, with(3, seq({narrow("{")})), 1, "settings: the document isn't JSON"},
        {{"info", "no-such-file"}, {}, 2, "can't read no-such-file"},
        {{"diff", "-", "-"}, {}, 2, "both"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const run result = vlbackup(c.arguments, c.input);
        EXPECT_EQ(result.status, c.status);
        EXPECT_NE((c.status == 2 ? result.err : result.out).find(c.told), std::string::npos)
            << result.out << result.err;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), c.status == 2 ? 1 : 0);
    }
}

TEST(Diff, NamesEachDifference)
{
    const auto path = std::filesystem::temp_directory_path() / "vlbackup-diff-test.bin";
    std::ofstream(path, std::ios::binary) << std::string(example.begin(), example.end());
    const bytes longer = filePair(L"b.vlm", "123");
    const struct {
        bytes second;
        bool reason; // why a restore makes it
        std::string out;
    } cases[] = {
        {with(0, seq({a, longer})), false, "templates b.vlm: content: 0 and 3 bytes that differ\n"},
        {with(0, seq({a})), false, "templates b.vlm: only in the first\n"},
        {with(0, seq({b, a})), true, "templates: in another order\n"},
        {with(1, seq({link(L"l", L"a.vlm", 8)})), false,
         "quicklinks l: profile: \"7\" and \"8\"\n"},
        {with(3, settings(R"("a":1)")), true,
         "settings settings.current.path_dontpromptlist_filename: only in the first\n"},
        {with(3, settings(R"("path_dontpromptlist_filename":"x","a":1)")), false,
         "backup element 3: encoded differently\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.out);
        const run plain = vlbackup({"diff", path.string(), "-"}, c.second);
        EXPECT_EQ(plain.status, 1);
        EXPECT_EQ(plain.out, c.out);
        const run restored = vlbackup({"diff", path.string(), "-", "--restored"}, c.second);
        EXPECT_EQ(restored.status, c.reason ? 0 : 1);
        EXPECT_EQ(restored.out.ends_with("equal but for that\n"), c.reason);
    }
    EXPECT_EQ(vlbackup({"diff", path.string(), "-"}, example).out, "equal\n");
    std::filesystem::remove(path);
}

} // namespace
