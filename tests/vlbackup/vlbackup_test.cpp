#include "formats/backup/backupview.h"
#include "formats/backup/elementtree.h"
#include "shared/checksumfile.h"
#include "support/files.h"
#include "vlbackup/backups.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <random>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

size_t held = 0, mostHeld = 0; // bytes, of the whole program

} // namespace

void* operator new(size_t size)
{
    auto* const block = static_cast<size_t*>(std::malloc(size + 16));
    if (!block)
        throw std::bad_alloc();
    *block = size;
    mostHeld = std::max(mostHeld, held += size);
    return block + 16 / sizeof *block;
}

// A sanitizer has its own, whose blocks are not for the delete below.
void* operator new(size_t size, const std::nothrow_t&) noexcept
try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

// Inlined, it would look to the compiler as if it read before the block.
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    if (!memory)
        return;
    auto* const block = static_cast<size_t*>(memory) - 16 / sizeof(size_t);
    held -= *block;
    std::free(block);
}

void operator delete(void* memory, size_t) noexcept
{
    operator delete(memory);
}

namespace {

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

TEST(Vlbackup, CommandsAnswerWithStatusAndText)
{
    const bytes odd = filePair(L"\u00e9.vlm", {"\0\r\n\x1A\xFF", 5});
    const bytes oldLink =
        seq({narrow("n\xC3\xA9"), narrow("t"), narrow("m"), integer(0xFF), narrow("i")});
    const bytes two = seq({none, seq({oldLink})}), three = seq({none, parts[1], parts[2]});
    const bytes legacy = with(3, seq({integer(1), wide(L"Alt+1"), octets("x")}));
    const struct {
        std::string command;
        bytes input;
        int status;
        std::string part; // of the output, or of the one line of a failure
    } cases[] = {
        {"ls -", example, 0, "         2  a.vlm\n"},
        {"ls -", two, 0, "n\xC3\xA9 -> t  (m, profile 255, id i)\n"},
        {"ls -", three, 0, "without credentials)\ncategories\n  c = 1\nsettings (absent)\n"},
        {"ls -", seq({none, none, none, parts[3], none}), 0, "settings (absent)"}, // of five
        {"ls -", legacy, 0, "prompt: show\n  hot key: Alt+1\n  do-not-prompt list: 3 bytes"},
        {"ls -", with(3, seq({integer(1), wide(L"Alt+1"), octets("x"), none})), 0, "list: 0 bytes"},
        {"ls - A?VLM L", example, 0, "templates\n         2  a.vlm\nquick links\n  l"},
        {"ls - *.v*m", example, 0, "         2  a.vlm\n         0  b.vlm\n"},
        {"ls - ?*a.v*m?", example, 1, "no ?*a.v*m? in standard input (vlbackup ls"},
        {"ls - none settings", example, 1, "settings (document)\n"},
        {"ls - ALIEN|*/*\u00c4\u00c4.*",
         with(0, seq({a, filePair(L"alien|C:\\x\\\u00e4\u00e4\u00e4.vlm", "x")})), 0,
         "templates\n         1  alien|C:\\x\\\u00e4"},
        {"ls - --json", seq({seq({odd}), none}), 0, "\"name\": \"\xC3\xA9.vlm\""},
        {"ls - --json", seq({seq({filePair(L"alien|C:\\a\\b.vlm", "x")}), none}), 0,
         R"("target": "C:\\a\\b.vlm")"},
        {"cat - \xC3\xA9.vlm", with(0, seq({odd, odd})), 0, {"\0\r\n\x1A\xFF", 5}},
        {"cat - a.vlm", with(0, seq({filePair(L"a.vlm", {}), a})), 0, "AB"}, // the last one
        {"cat - settings", example, 0, "_filename\":\"x\"}}}"},
        {"cat - \x9B", example, 1, "no \\x9B in standard input"},
        {"info -", with(0, seq({})), 0, "sound, with warnings (errors 0, warnings 1, notes 0)"},
        {"diff - -", {}, 2, "both"},
        {"diff -", {}, 2, "or give --live"},
        {"diff - x --live", {}, 2, "not with another"},
#ifndef _WIN32
        {"diff - --live", example, 1, "no profile on this system"},
#endif
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.command);
        const toolRun_t result = vlbackup(wordsOf(c.command), c.input);
        EXPECT_EQ(result.status, c.status);
        expectIn(result.out + result.err, {c.part});
    }
}

// A folder of the test's own: files go into "out", where "link" leads to "outside".
class InFolder : public testing::Test
{
protected:
    InFolder()
    {
        writeFile(m_root / "outside" / "theirs.vlm", "theirs");
        fs::create_directories(m_root / "out/alien/C");
        std::error_code error; // Wine has none
        fs::create_directory_symlink(m_root / "outside", m_root / "out/link", error);
        fs::create_symlink(m_root / "outside/theirs.vlm", m_root / "out/link.vlm", error);
        fs::create_directory_symlink(m_root / "outside", m_root / "out/alien/C/link", error);
        m_linked = !error;
    }
    ~InFolder() override { fs::remove_all(m_root); }

    std::string Stored(const bytes& backup) const
    {
        const fs::path path = m_root / "x y.vlb";
        writeFile(path, {reinterpret_cast<const char*>(backup.data()), backup.size()});
        return path.string();
    }
    toolRun_t Extract(const bytes& input, std::vector<std::string> more = {}) const
    {
        more.insert(more.begin(), {"extract", "-", (m_root / "out").string()});
        return vlbackup(std::move(more), input);
    }
    // The files that were written, and what they hold; nothing else has changed.
    std::map<std::string, std::string> Written() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_root))
            if (!entry.is_symlink() && entry.is_regular_file()) {
                const auto name = entry.path().lexically_relative(m_root).generic_u8string();
                files[{name.begin(), name.end()}] = fileBytes(entry.path());
            }
        EXPECT_EQ(files["outside/theirs.vlm"], "theirs");
        files.erase("outside/theirs.vlm");
        return files;
    }

    fs::path m_root =
        fs::temp_directory_path() / ("extract-" + std::to_string(std::random_device()()));
    bool m_linked = false;
};

TEST_F(InFolder, TheBackupIsHeldAndLittleOfEachElement)
{
    struct : std::streambuf {
        int overflow(int c) override { return c == EOF ? 0 : c; }
    } nothing;
    constexpr size_t count = 5'000;
    std::vector<bytes> stored;
    for (size_t i = 0; i < count; ++i) // with two findings each
        stored.push_back(filePair(L"what kind of file? " + std::to_wstring(i), ""));
    const std::string file = Stored(seq({seq(stored), none}));
    std::istringstream in;
    std::ostream full(nullptr);
    EXPECT_EQ(runVlbackup({"ls", file}, in, full, full), 1);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"ls"}, {"info"}, {"verify"}, {"diff", file}})
        for (const bool json : {false, true}) {
            std::ostream out(&nothing);
            std::vector<std::string> arguments = command;
            arguments.push_back(file);
            if (json)
                arguments.emplace_back("--json");
            const size_t before = mostHeld = held;
            EXPECT_NE(runVlbackup(std::move(arguments), in, out, out), 2);
            EXPECT_LT(mostHeld - before, 64 * count + (1 << 17)) << command[0] << json;
        }
}

TEST_F(InFolder, ExtractWritesWhatItCanAndSaysWhatItCannot)
{
    const bytes backup =
        seq({seq({a, filePair(L"nul .vlm", "x"), filePair(L"\u00c4.vlm", "1"),
                  filePair(L"\u00e4.vlm", "2"), filePair(L"alien|c:\\x/.\\b.vlm", "3"),
                  filePair(L"alien|\\\\s\\x\\b.vlm", "4"), filePair(L"alien|C:\\x\\", "5")}),
             none});
    const auto lines = [](const std::string& text) { return std::ranges::count(text, '\n'); };
    using files_t = std::map<std::string, std::string>;
    files_t files = {{"out/a.vlm", "AB"}};
    EXPECT_EQ(Extract(backup, {"a.*", "A.VLM"}).status, 0);
    EXPECT_EQ(Written(), files);
    EXPECT_EQ(Extract(backup, {"b.vlm"}).status, 1);
    EXPECT_EQ(vlbackup({"extract", "-", "-"}, backup).status, 2);
    writeFile(m_root / "out/a.vlm", "mine");
    toolRun_t result = Extract(backup);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(lines(result.out), 3) << result.out;
    EXPECT_EQ(lines(result.err), 4) << result.err;
    expectIn(result.err,
             {"\"nul .vlm\" names a device", "a later one", "exists already", "names no file"});
    files = {{"out/a.vlm", "mine"},
             {"out/\u00e4.vlm", "2"},
             {"out/alien/C/x/b.vlm", "3"},
             {"out/alien/UNC/s/x/b.vlm", "4"}};
    EXPECT_EQ(Written(), files);
    result = Extract(backup, {"--force", "--json"});
    EXPECT_EQ(std::to_string(result.status) + result.err, "1");
    EXPECT_EQ(parsed(result.out)["files"].size(), 7);
    files["out/a.vlm"] = "AB";
    EXPECT_EQ(Written(), files);
}

TEST_F(InFolder, ExtractStaysInItsFolderWhateverTheNamesAre)
{
    const std::wstring pieces[] = {
        L"..",      L"\\",     L"/",       L"alien|",     L"C:\\",   L"\\\\s\\x\\",
        L"\\\\?\\", L"con",    L":b",      L"a",          L"A",      L"link",
        L".vlm",    L" ",      L".",       L"?|*",        L"\u202e", L"com\u00b9",
        L"\u00e9",  L"\u0001", L"outside", L"theirs.vlm", L"<",      std::wstring(130, L'x')};
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same names each time
    std::vector<bytes> stored;
    for (int i = 0; i < 800; ++i) {
        std::wstring name = i % 2 == 0 ? L"alien|c:\\" : L"";
        for (auto left = 1 + random() % 5; left > 0; --left)
            name += pieces[random() % std::size(pieces)];
        stored.push_back(filePair(name, std::to_string(i)));
    }
    for (const wchar_t* name : {L"link.vlm", L"alien|C:\\link\\new.vlm"})
        stored.push_back(filePair(name, "x"));
    const toolRun_t result = Extract(seq({seq(stored), none}), {"--force"});
    const auto files = Written();
    EXPECT_EQ(std::ranges::count(result.out, '\n'), files.size());
    EXPECT_EQ(std::ranges::count(result.out + result.err, '\n'), stored.size());
    EXPECT_EQ(m_linked, result.err.find("link.vlm is a link") != std::string::npos);
    if (m_linked) { // another output follows it
        vlbackup({"redact", "-", (m_root / "out/link.vlm").string(), "--force"}, example);
        EXPECT_TRUE(fs::is_symlink(m_root / "out/link.vlm"));
        EXPECT_NE(fileBytes(m_root / "outside/theirs.vlm"), "theirs");
    }
    std::set<std::string> lower;
    for (const auto& [name, content] : files) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(name.starts_with("out/"));
        std::string folded = name;
        std::ranges::transform(folded, folded.begin(), [](unsigned char c) { return tolower(c); });
        EXPECT_TRUE(lower.insert(folded).second);
        // Nothing that some file system would not take, or take for another file.
        EXPECT_EQ(folded.find_first_of("<>:\"|?*\\\x01"), std::string::npos);
        EXPECT_EQ(folded.find(std::string(256, 'x')), std::string::npos);
        std::istringstream path(folded);
        for (std::string part; std::getline(path, part, '/');) {
            EXPECT_EQ(std::string(" .").find(part.back()), std::string::npos);
            part.resize(std::min(part.size(), part.find('.')));
            part.resize(part.find_last_not_of(' ') + 1);
            EXPECT_TRUE(part != "con" && part != "com\u00b9");
        }
    }
    EXPECT_GT(files.size(), 50U);
}

TEST(Verify, GradesWhatARestoreWouldMakeOfIt)
{
    const std::wstring longName(252, L'x');
    bytes longer = example;
    longer.push_back(0);
    const auto files = [](const std::vector<bytes>& pairs) { return seq({seq(pairs), none}); };
    const auto stored = [&](const std::wstring& name) { return files({filePair(name, "x")}); };
    const auto links = [](const std::vector<bytes>& records) {
        return seq({seq({a}), seq(records), none, parts[3]});
    };
    const auto opens = [&](const std::wstring& target) { return links({link(L"l", target)}); };
    const struct {
        bytes backup;
        const char* verdict;
        const char* finding; // a part of it
    } cases[] = {
        {{example.begin(), example.end() - 1}, "error", "cut at byte 174 of 175"},
        {longer, "warning", "1 byte after its end"},
        {tlv(0x30, {0x30, 0, 0x30, 9}), "error", "element at byte 4 is damaged"},
        {with(0, seq({integer(1)})), "error", "templates[0]: not a sequence"},
        {with(0, seq({a, seq({wide(L"")})})), "error", "templates[1]: 1 element in a pair"},
        {files({seq({tlv(0x1E, {0, 'a', 0, 0, 0}), none})}), "error", "more than a restore takes"},
        {files({seq({tlv(0x1E, {0, 'a', 0, 0, 0, 'b'}), none})}), "error",
         "more than a restore takes"},
        {files({seq({tlv(0x1E, {0, 'a', 0, '.', 0, 'v', 0, 'l', 0, 'm'}), octets("x")})}),
         "warning", "terminating zero"},
        {files({filePair(L"updata.vls", {}), filePair(L"a.VLM", "x")}), "sound", ""},
        {files({b}), "warning", "is empty"},
        {files({a, filePair(L"A.vlm.", "x")}), "error", "the same file as templates[0]"},
        {files({filePair(L"\u00c4.vlm", "x"), filePair(L"\u00e4.vlm", "x")}), "error", "same file"},
        {files({filePair(L"alien|C:\\a\\b.vlm", "x"), filePair(L"alien|c:/A/.//B.vlm", "x")}),
         "error", "same file"},
        {stored(L"C:\\x\\y.vlm"), "error", "holds a path"},
        {stored(L"CON.vlm"), "error", "device"},
        {stored(L"nul .vlm"), "error", "device"},
        {stored(L"alien|C:\\com\u00b9\\y.vlm"), "error", "device"},
        {stored(L"a.vlm "), "error", "blank or a dot"},
        {stored(L"a?.vlm"), "error", "character"},
        {stored(L"ALIEN|C.vlm"), "error", "character"},
        {stored(longName + L".vlm"), "error", "longer than a file name"},
        {stored(L"a.exe"), "error", "is no template"},
        {stored(L"a.vlmx"), "warning", "is no template"},
        {stored(L"a.vls"), "sound", ""},
        {stored(L"alien|C:\\a\\b.vls"), "error", "is no template"}, // no export finds one there
        {stored(L"\u202emlv.vlm"), "warning", "direction marks"},
        {stored(L"alien|C:\\a\\b.vlm"), "sound", ""},
        {stored(L"alien|C:\\userspace\\b.vlm"), "sound", ""},
        {stored(L"alien|C:\\a.exe:b.vlm"), "error", "stream"},
        {stored(L"alien|a\\b.vlm"), "error", "no full path"},
        {stored(L"alien|C:\\a\\..\\b.vlm"), "error", "climbs"},
        {stored(L"alien|C:\\Windows\\System32\\b.vlm"), "warning", "folder of the system"},
        {stored(L"alien|d:/PROGRAM FILES (x86)/b.vlm"), "warning", "folder of the system"},
        {stored(L"alien|\\\\?\\C:\\Users\\x\\b.vlm"), "warning", "folder of the system"},
        {stored(L"alien|C:\\\\.\\Users. \\b.vlm"), "error", "folder of the system"},
        {stored(L"alien|\\\\server\\share\\b.vlm"), "warning", "network share"},
        {stored(L"alien|\\\\?\\UNC\\server\\share\\b.vlm"), "warning", "network share"},
        {stored(L"alien|C:\\" + longName + L"\\abcd.vlm"), "warning", "most hosts"},
        {stored(L"alien|C:\\" + std::wstring(200, L'\u0416') + L"\\a.vlm"), "sound", ""},
        {links({seq({wide(L"")})}), "error", "quicklinks[0]: 1 element; a restore drops"},
        {links({link(L"n", L"t", L"..\\a.vlm")}), "error", "template with a path"},
        {links({link(L"n", L"t", L"A.VLM")}), "sound", ""},
        {links({link(L"n", L"t", L"none.vlm")}), "warning", "no template of the personal folder"},
        {links({seq({wide(L"")}), link(L"l"), link(L"m")}), "error",
         "template and profile of quicklinks[1]"},
        {links({link(L"l"), link(L"m", L"t", L"a.vlm", 8)}), "sound", ""},
        {links({link(L"l\r\nUrl=x")}), "error", "line end in the name"},
        {links({link(L"")}), "error", "no name or no target"},
        {opens(L"HTTPS://x.example:80/javascript:"), "sound", ""},
        {opens(L"x.example:8080/a"), "sound", ""},
        {opens(L"localhost:8080"), "sound", ""},
        {opens(L" java\tscript:1/alert(1)"), "warning", "not one of the web"},
        {opens(L"data:text/html,x"), "warning", "not one of the web"},
        {opens(L"file:///c:/x"), "warning", "not one of the web"},
        {opens(L"c:\\windows\\NOTEPAD.exe"), "warning", "opens a program"},
        {opens(L"iexplore.exe -x"), "warning", "opens a program"},
        {opens(L"\\\\server\\x.txt"), "warning", "opens a file"},
        {with(2, seq({seq({wide(L"\u0416"), wide(L"1")}), seq({wide(L"\u0436"), wide(L"2")})})),
         "error", "same category as categories[0]"},
        {with(3, seq({narrow("{")})), "error", "settings: the document isn't JSON"},
        {with(3, settings("\"open_guard_desk_qa\":1")), "error", "must be a text"},
        {with(3, seq({narrow("[1]")})), "error", "no object"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.verdict) + ' ' + c.finding);
        const toolRun_t text = vlbackup({"verify", "-"}, c.backup);
        expectIn(text.out + text.err, {c.finding});
        EXPECT_EQ(text.status, c.verdict == std::string("error") ? 1 : 0) << text.out;
        EXPECT_EQ(vlbackup({"verify", "-", "--strict"}, c.backup).status,
                  c.verdict == std::string("sound") ? 0 : 1)
            << text.out;
        const Json::Value json = parsed(vlbackup({"verify", "-", "--json"}, c.backup).out);
        EXPECT_EQ(json["verdict"], c.verdict);
        std::map<std::string, size_t> offsets;
        walkElements(c.backup, [&](const BackupElement& element) {
            offsets.try_emplace(pathText(element.place), element.place.offset);
        });
        for (const Json::Value& found : json["findings"]) {
            const auto at = offsets.find(found["path"].asString());
            if (at != offsets.end() && !at->first.empty()) { // else it is what a missing one lacks
                EXPECT_EQ(found["offset"].asUInt(), at->second) << found;
            }
        }
    }
}

TEST_F(InFolder, MergeHasOnceWhatBothHaveAndOfWhatDiffersThePreferred)
{
    const auto merged = [&](const bytes& mine, const bytes& other, std::vector<std::string> more) {
        more.insert(more.begin(), {"merge", "-", Stored(other), "-o", "-"});
        return vlbackup(std::move(more), mine);
    };
    const auto category = [](const wchar_t* name, const wchar_t* text) {
        return seq({wide(name), wide(text)});
    };
    const bytes first =
        seq({seq({a, filePair(L"B.vlm", "1"), filePair(L"updata.vls", "")}),
             seq({link(L"l"), link(L"m", L"t", L"b.vlm"), link(L"n", L"t", L"a.vlm", 8)}),
             seq({category(L"c", L"1"), category(L"d", L"1")}), settings(R"("a":1,"b":2)")});
    const bytes second = seq({seq({filePair(L"b.VLM", "22"), filePair(L"A.VLM", "AB"),
                                   filePair(L"updata.vls", "333"), filePair(L"z.vlm", "4444")}),
                              seq({link(L"o", L"t", L"B.vlm"), link(L"l", L"t", L"A.vlm")}),
                              seq({category(L"D", L"2"), category(L"C", L"1")}),
                              settings(R"("a":1,"b":3,"c":{"d":4})")});
    const std::string tail = "quicklinks n: only in the first\n"
                             "categories d: text: \"1\" and \"2\"; from the first\n"
                             "settings settings.current.b: 2 and 3; from the first\n"
                             "settings settings.current.c.d: only in the second\n"
                             "merged: 4 from both, 5 from the first, 3 from the second\n";
    const toolRun_t conflict = merged(first, second, {}),
                    ours = merged(first, second, {"--prefer", "first"}),
                    theirs = merged(first, second, {"--prefer", "second"});
    EXPECT_EQ(std::to_string(conflict.status) + conflict.out, "1");
    expectIn(conflict.err, {"differ in 4 things"});
    EXPECT_TRUE(ours.err.ends_with(tail)) << ours.err;
    const auto ls = [](const toolRun_t& run) {
        const bytes backup(run.out.begin(), run.out.end());
        EXPECT_EQ(vlbackup({"verify", "-"}, backup).status, 0);
        return vlbackup({"ls", "-"}, backup).out;
    };
    const std::string end = ", profile 7, id id, without credentials)\n";
    const auto expected = [&](const char* name, char link, const std::string& from, char text) {
        return "templates\n         2  a.vlm\n         " + std::string(name) +
               "\n         3  updata.vls\n         4  z.vlm\n"
               "quick links\n  l -> t  (a.vlm" +
               end + "  " + link + " -> t  (" + from + end +
               "  n -> t  (a.vlm, profile 8, id id, without credentials)\n"
               "categories\n  c = 1\n  " +
               (text == '1' ? "d = 1" : "D = 2") +
               "\nsettings (document)\n"
               "  {\"settings\":{\"current\":{\"a\":1,\"b\":" +
               (text == '1' ? '2' : '3') + ",\"c\":{\"d\":4}}}}\n";
    };
    EXPECT_EQ(ls(ours), expected("1  B.vlm", 'm', "b.vlm", '1'));
    EXPECT_EQ(ls(theirs), expected("2  b.VLM", 'o', "B.vlm", '2'));
    const bytes old =
        seq({none,
             seq({seq({narrow("n\xC3\xA9"), narrow("t"), narrow("m"), integer(1), narrow("i")})})});
    const bytes legacy = with(3, seq({integer(1), wide(L"Alt+1")})),
                five = seq({none, none, none, none, none});
    const struct {
        bytes mine, other;
        const char* part; // of the merged one's ls, or of the failure
    } cases[] = {
        {old, old,
         "quick links\n  n\xC3\xA9 -> t  (m, profile 1, id i)\ncategories\nsettings (absent)"},
        {old, example, "n\xC3\xA9 -> t  (m, profile 1, id i)\n  l ->"},
        {legacy, old, "prompt: show"},
        {legacy, legacy, "prompt: show"},
        {legacy, example, "of another form"},
        {five, example, "of another form"},
        {old, five, "settings (absent)"},
        {with(3, seq({narrow("{")})), example, "is not sound (vlbackup verify"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.part);
        const toolRun_t run = merged(c.mine, c.other, {});
        expectIn(run.status == 0 ? ls(run) : run.err, {c.part});
    }
}

TEST_F(InFolder, VerifyComparesWithTheChecksumBesideIt)
{
    const std::string file = Stored(with(0, seq({a}))), list = file + ".sha256", zeros(64, '0');
    writeChecksum(file, bytes{'a', 'b', 'c'}, false);
    EXPECT_EQ(fileBytes(list), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"
                               "  x y.vlb\n");
    const std::string info = vlbackup({"info", file}, none).out;
    const std::string sum = info.substr(info.find("sha-256") + 13, 64);
    std::string upper = sum;
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return toupper(c); });
    const std::tuple<std::string, int, const char*> cases[] = {
        {sum + "  x y.vlb\n", 0, "sound\n"},
        {upper + " *other.vlb\r\n", 0, "sound\n"}, // renamed
        {zeros + "  a\n" + sum + "  x y.vlb\n", 0, "sound\n"},
        {zeros + "  x y.vlb\n", 1, "another checksum"},
        {zeros + "  a\n" + sum + "  b\n", 0, "no checksum of it"},
        {sum + "0  x y.vlb\n", 0, "no checksum of it"},
        {"", 0, "no checksum of it"},
    };
    for (const auto& [content, status, said] : cases) {
        SCOPED_TRACE(content);
        writeFile(list, content);
        const toolRun_t result = vlbackup({"verify", file}, none);
        EXPECT_EQ(result.status, status);
        expectIn(result.out, {said});
    }
}

TEST(BackupView, NamesTheMarkedFilesOutsideOfFolders)
{
    std::vector<bytes> stored = {a};
    for (const std::wstring path :
         {L"C:\\Logons\\a.vlm", L"c:/logons/x/b.vlm", L"C:\\Logons\\..\\c.vlm",
          L"C:\\LogonsX\\d.vlm", L"\\\\?\\C:\\LOGONS\\e.vlm", L"D:\\Logons\\f.vlm"})
        stored.push_back(filePair(L"alien|" + path, "x"));
    const bytes backup = seq({seq(stored), none});
    CBackupView view;
    ASSERT_TRUE(view.Decode(backup));
    const std::vector<std::string> folders = {"C:\\Logons\\", ""};
    std::string outside;
    for (const BackupFile& marked : view.MarkedOutside(folders))
        outside += std::to_string(marked.place);
    EXPECT_EQ(outside, "346");
}

TEST_F(InFolder, DiffNamesEachDifference)
{
    const bytes longer = filePair(L"b.vlm", "123");
    const struct {
        bytes second;
        bool reason; // why a restore makes it
        std::string out;
        bytes first = example;
    } cases[] = {
        {with(0, seq({a, longer})), false, "templates b.vlm: content: 0 and 3 bytes that differ\n"},
        {with(0, seq({a})), false, "templates b.vlm: only in the first\n"},
        {with(0, seq({b, a})), true, "templates: in another order\n"},
        {with(1, seq({link(L"l", L"t", L"a.vlm", 8)})), false,
         "quicklinks l: profile: \"7\" and \"8\"\n"},
        {with(0, seq({b, b})), false, "templates b.vlm: content: 3 and 0 bytes that differ\n",
         with(0, seq({b, longer}))},
        {with(3, settings(R"("a":1)")), true,
         "settings settings.current.path_dontpromptlist_filename: only in the first\n"},
        {with(3, settings(R"("path_dontpromptlist_filename":"x")")), false,
         "settings settings.current.a: only in the first\n"},
        {with(3, settings(R"("path_dontpromptlist_filename":"x","a":1)")), false,
         "backup element 3: encoded differently\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.out);
        const std::string first = Stored(c.first);
        const toolRun_t plain = vlbackup({"diff", first, "-"}, c.second);
        EXPECT_EQ(plain.status, 1);
        EXPECT_EQ(plain.out, c.out);
        const toolRun_t restored = vlbackup({"diff", first, "-", "--restored"}, c.second);
        EXPECT_EQ(restored.status, c.reason ? 0 : 1);
        EXPECT_EQ(restored.out.ends_with("equal except for that\n"), c.reason);
    }
    EXPECT_EQ(vlbackup({"diff", Stored(example), "-"}, example).out, "equal\n");
}

} // namespace
