#include "fixture.h"

#include <iterator>
#include <sstream>

#include <aclapi.h>

#include "storage/paths.h"
#include "support/patchimport.h"

namespace {

using Messages = std::vector<std::wstring>;

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at; (at = text.find(from)) != std::string::npos;)
        text.replace(at, from.size(), to);
    return text;
}

// shown names every field of the records.
std::string shown(const QL& ql)
{
    std::ostringstream out;
    for (const QLRecord& r : ql.records)
        out << r.index << " k=" << r.kind << " u=" << r.url << " d=" << r.dlgpath
            << " m=" << r.manifest << " n=" << r.name << " p=" << r.profile << " i=" << r.manifestid
            << " w=" << r.wocred << '\n';
    return out.str();
}

TEST_F(QuickLinks, ParserReadsKeysHeadersAndBrokenLines)
{
    put(folder / "t.vlm", "x");
    put(folder / "s.vlm", "x");
    put(folder / "IExplore.exe", "x");
    put(own("own.vlm"), "x");
    const struct {
        const char* text; // @ is the folder
        const char* records;
        Messages traced;
    } cases[] = {
        {"[ShortCutRecord]\nManifest=@\\t.vlm\nUrl=a=b\nName=n\nProfile=7\nManifestID=id\nQLwoCred="
         "1",
         "0 k=1 u=a=b d= m=@\\t.vlm n=n p=7 i=id w=1\n",
         {}},
        {"[SHORTCUTRECORD]\nmANIFEST=@\\t.vlm\r\rURL=u",
         "0 k=1 u=u d= m=@\\t.vlm n= p=0 i= w=0\n",
         {}},
        {"Manifest=@\\t.vlm\n[ShortCutRecord] \nUrl=u", // the trailing blank: no header
         "0 k=1 u=u d= m=@\\t.vlm n= p=0 i= w=0\n",
         {L"E 0 inv.line '[ShortCutRecord] '"}},
        {"\xEF\xBB\xBF[ShortCutRecord]\nManifest=@\\t.vlm", // so does a mark in front
         "0 k=0 u= d= m=@\\t.vlm n= p=0 i= w=0\n",
         {L"E 0 inv.line '\uFEFF[ShortCutRecord]'"}},
        {"[x=y\n=y\ny=\nplain\n Url=u\nName = n\nManifest=@\\t.vlm",
         "0 k=0 u= d= m=@\\t.vlm n= p=0 i= w=0\n",
         {L"E 0 inv.line '=y'", L"E 0 inv.line 'plain'"}},
        {"[ShortCutRecord]\nName=\n[ShortCutRecord]\nManifestID=i", "", {}},
        {"krsurls=a,b\nKRSDlgPaths=c", "", {}},
        {"Url=u\nName=n", "", {}},
        {"Manifest=@\nName=n", "", {}}, // a folder
        // a record whose manifest is missing leaves its fields to the next one
        {"[ShortCutRecord]\nUrl=u1\nName=n1\nProfile=3\nQLwoCred=1\nManifest=@\\gone.vlm\n"
         "[ShortCutRecord]\nManifest=@\\t.vlm\nDlgpath=@\\gone.exe\n"
         "[ShortCutRecord]\nManifest=@\\s.vlm\nName=n2",
         "0 k=1 u=u1 d= m=@\\t.vlm n=n1 p=3 i= w=1\n1 k=0 u= d= m=@\\s.vlm n=n2 p=0 i= w=0\n",
         {}},
        {"Manifest=alien|@\\t.vlm", "0 k=0 u= d= m=alien|@\\t.vlm n= p=0 i= w=0\n", {}},
        {"Manifest=@\\t.vlm\nDlgpath=@\\t.vlm\nUrl=u", // the later address line decides
         "0 k=1 u=u d=@\\t.vlm m=@\\t.vlm n= p=0 i= w=0\n",
         {}},
        {"Manifest=@\\t.vlm\nUrl=u\nDlgpath=@\\IEXPLORE.EXE dialog", // exists up to the name's end
         "0 k=2 u=u d=@\\IEXPLORE.EXE dialog m=@\\t.vlm n= p=0 i= w=0\n",
         {}},
        {"Manifest=@\\t.vlm\nDlgpath=%APPDATA%\\..\\t.vlm", // not expanded
         "0 k=0 u= d= m=@\\t.vlm n= p=0 i= w=0\n",
         {}},
        {"Manifest=%appdata%\\Veltrano\\KRS\\Templates\\own.vlm\nName=n", // expanded
         "0 k=0 u= d= m=%appdata%\\Veltrano\\KRS\\Templates\\own.vlm n=n p=0 i= w=0\n",
         {}},
    };
    traceRecorder_t recorder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        put(file, replaced(c.text, "@", utf8(folder)));
        const QL ql;
        EXPECT_EQ(replaced(shown(ql), utf8(folder), "@"), c.records);
        EXPECT_EQ(recorder.messages(), c.traced);
        EXPECT_EQ(ql.krsurls + ql.krsdlgpaths, ""); // without records, the lists go too
    }
}

TEST_F(QuickLinks, IntegersAreReadAsAStreamReadsThem)
{
    put(folder / "t.vlm", "x");
    const struct {
        const char* text;
        uint32_t value;
    } cases[] = {{"", 0},
                 {"12abc", 12},
                 {"abc", 0},
                 {"1", 1},
                 {"+1", 1},
                 {"4294967295", 4294967295},
                 {"4294967296", 4294967295}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        QL ql;
        ql.parse({"Manifest=" + shared("t.vlm"), std::string("Profile=") + c.text,
                  std::string("QLwoCred=") + c.text});
        ASSERT_EQ(ql.records.size(), 1u);
        EXPECT_EQ(ql.records[0].profile, c.value);
        EXPECT_EQ(ql.records[0].wocred, c.value == 1);
    }
}

TEST_F(QuickLinks, LoadsUtf16WithAMarkAndNothingFromAFileInUse)
{
    put(folder / "t.vlm", "x");
    const std::wstring text =
        L"\uFEFF[ShortCutRecord]\r\nName=\u00FC\u4E00\r\nManifest=" + (folder / "t.vlm").wstring();
    put(file, {reinterpret_cast<const char*>(text.data()), 2 * text.size()});
    const QL ql;
    ASSERT_EQ(ql.records.size(), 1u);
    EXPECT_EQ(ql.records[0].name, "\xC3\xBC\xE4\xB8\x80");
    const std::ofstream writer(file, std::ios::app);
    EXPECT_EQ(QL().records.size(), 0u);
}

TEST_F(QuickLinks, WrittenFileReadsBackTheSame)
{
    put(folder / "t.vlm", "x");
    put(folder / "app.exe", "x");
    QL ql;
    ql.records.resize(3);
    ql.records[0].kind = 1;
    ql.records[0].url = "https://a.b/?x=1&y=\xC3\xA9";
    ql.records[0].dlgpath = "not written";
    ql.records[0].manifest = shared("t.vlm");
    ql.records[0].name = "n [x] = ";
    ql.records[0].profile = 4294967295;
    ql.records[1].manifest = shared("t.vlm"); // without a kind: left out
    ql.records[2] = {2, "not written", shared("app.exe"), shared("t.vlm"), "id", 5, -1, "d", true};
    ql.krsurls = "a,b";
    ql.krsdlgpaths = "c";
    traceRecorder_t recorder;
    ASSERT_TRUE(ql.save(file.wstring(), true));
    EXPECT_EQ(recorder.messages(), Messages{L"U save " + shortpath(file.wstring())});
    const std::string expected = "[ShortCutRecord]\r\nManifest=@\\t.vlm\r\n"
                                 "Url=https://a.b/?x=1&y=\xC3\xA9\r\nName=n [x] = \r\n"
                                 "Profile=4294967295\r\nManifestID=\r\nQLwoCred=0\r\n"
                                 "[ShortCutRecord]\r\nManifest=@\\t.vlm\r\nDlgpath=@\\app.exe\r\n"
                                 "Name=d\r\nProfile=5\r\nManifestID=id\r\nQLwoCred=1\r\n"
                                 "KRSURLs=a,b\r\nKRSDlgPaths=c\r\n";
    EXPECT_EQ(replaced(get(file), utf8(folder), "@"), expected);

    const QL back;
    EXPECT_EQ(replaced(shown(back), utf8(folder), "@"),
              "0 k=1 u=https://a.b/?x=1&y=\xC3\xA9 d= m=@\\t.vlm n=n [x] =  p=4294967295 i= w=0\n"
              "1 k=2 u= d=@\\app.exe m=@\\t.vlm n=d p=5 i=id w=1\n");
    EXPECT_EQ(back.krsurls, "a,b");
    EXPECT_EQ(back.krsdlgpaths, "c");
}

TEST_F(QuickLinks, SavedTextEndsAtAZeroByteAndMayBeEmpty)
{
    QL ql;
    EXPECT_TRUE(ql.save(file.wstring(), false));
    EXPECT_EQ(get(file), "");
    ql.records.resize(2);
    ql.records[0].kind = ql.records[1].kind = 1;
    ql.records[0].url = std::string("a\0b", 3);
    EXPECT_TRUE(ql.save(file.wstring(), false));
    EXPECT_EQ(get(file), "[ShortCutRecord]\r\nManifest=\r\nUrl=a");
}

int failingFputs(const char*, FILE*)
{
    return EOF;
}

TEST_F(QuickLinks, FailedSaveIsTracedAndFalse)
{
    const std::wstring longName = folder.wstring() + L"\\" + std::wstring(300, L'x');
    const struct {
        std::wstring name;
        Messages traced;
    } cases[] = {
        {L"", {L"E 0 empty fname"}},
        {longName.substr(0, 261), {L"E 0 savefile exception"}},
        {(folder / "gone" / "links.txt").wstring(), {L"E 0 savefile exception"}},
        {folder.wstring(), {L"E 0 savefile exception"}},
    };
    const QL ql;
    traceRecorder_t recorder;
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8FromWide(c.name));
        EXPECT_FALSE(ql.save(c.name, false));
        EXPECT_EQ(recorder.messages(), c.traced);
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder));

    put(file, "old");
    const importPatch_t patch(GetModuleHandleW(nullptr), "fputs",
                              reinterpret_cast<void*>(failingFputs));
    ASSERT_TRUE(patch.found());
    EXPECT_FALSE(ql.save(file.wstring(), false));
    EXPECT_EQ(recorder.messages(), Messages{L"E 0 savefile exception"});
    EXPECT_EQ(get(file), "");
    EXPECT_FALSE(DeleteFileW(file.c_str())); // the stream is still open
    _fcloseall();
}

std::vector<std::wstring> openedFolders;

DWORD WINAPI seenSecurity(LPCWSTR name, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL*,
                          PACL*, PSECURITY_DESCRIPTOR*)
{
    openedFolders.push_back(name);
    return ERROR_ACCESS_DENIED;
}

TEST_F(QuickLinks, SaveLetsApplicationPackagesIntoTheFolder)
{
    openedFolders.clear();
    const importPatch_t patch(GetModuleHandleW(nullptr), "GetNamedSecurityInfoW",
                              reinterpret_cast<void*>(seenSecurity));
    ASSERT_TRUE(patch.found());
    EXPECT_TRUE(QL().save(file.wstring(), false)); // refused there, saved all the same
    EXPECT_EQ(openedFolders, std::vector<std::wstring>{folder.wstring()});
}

TEST(DialogPath, SplitsBehindTheBrowserAndLowers)
{
    const struct {
        const wchar_t* text;
        const wchar_t* head;
        const wchar_t* tail;
    } cases[] = {
        {L"", L"", L""},
        {L"C:\\A\\App.EXE Dialog", L"c:\\a\\app.exe dialog", L""},
        {L"C:\\IExplore.EXE", L"c:\\iexplore.exe", L""},
        {L"C:\\IExplore.EXE Dlg iexplore.exe", L"c:\\iexplore.exe", L" dlg iexplore.exe"},
    };
    for (const auto& c : cases) {
        std::wstring head = L"old";
        std::wstring tail = L"old";
        splitdlgpath(c.text, head, tail);
        EXPECT_EQ(head, c.head);
        EXPECT_EQ(tail, c.tail);
    }
}

TEST(DialogPath, IsToldByItsTextAlone)
{
    const struct {
        std::string target;
        bool dialog;
    } cases[] = {
        {"", false},
        {".exe", true},
        {"a.b/c.EXE", true},
        {"a.b/c", false},
        {"a.exe.", false},
        {"a.exe b", false},
        {"exe", false},
        {"c:\\x\\IEXPLORE.exe -x", true},
        {"iexplore.ex", false},
        {"http://a/?iexplore.exe", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(isdlgpath(c.target), c.dialog) << c.target;
}

} // namespace
