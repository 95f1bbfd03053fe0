#include "surroundings.h"

TEST(Paths, BecomeOtherPaths)
{
    const std::wstring shorter(248, L'x'), longer(249, L'x'), longest(259, L'v');
    const environment_t roaming(L"APPDATA", LR"(C:/R\)"), local(L"LOCALAPPDATA", longest.c_str());
    const auto unmarked = [](const std::wstring& text) {
        bool marked = false;
        const std::wstring rest = stripalienmark(text, marked);
        return rest + (marked ? L"+" : L"-");
    };
    const std::tuple<std::wstring (*)(const std::wstring&), std::wstring, std::wstring> cases[] = {
        {addslash, L"", L""},
        {addslash, L"a/b", L"a/b\\"},
        {addslash, L"a\\b/", L"a\\b/"},
        {unifyslashes, L"a\\b//", L"a\\b\\\\"},
        {lowerpath, L"AZ\u00C4[", L"az\u00C4["},
        {longform, shorter, shorter},
        {longform, longer, LR"(\\?\)" + longer},
        {longform, LR"(\\?\)" + longer, LR"(\\?\)" + longer},
        {expandenv, L"%VL_NONE%%LOCALAPPDATA%", L"%VL_NONE%" + longest},
        {collapseenv, LR"(C:/R\C:/R\)" + longest, LR"(%appdata%C:/R\)" + longest},
        {collapseenv, L"x" + longest, L"x%localappdata%"},
        {collapseenv, LR"(c:/r\x)", LR"(c:/r\x)"},
        {unmarked, L"alien|alien|", L"alien|+"},
        {unmarked, L"ALIEN|", L"ALIEN|-"},
    };
    for (const auto& [tool, path, result] : cases)
        EXPECT_EQ(tool(path), result);
    EXPECT_EQ(appdata_templatesdir(), LR"(C:/R/Veltrano\KRS\Templates\)");
    EXPECT_EQ(localappdata_rootdir(), longest + LR"(\Veltrano\KRS\)");
    traceRecorder_t traces;
    const environment_t tooLong(L"LOCALAPPDATA", (longest + L"v").c_str()),
        unset(L"APPDATA", nullptr);
    EXPECT_EQ(collapseenv(L"x"), L"%appdata%x");                         // found in front
    EXPECT_TRUE(localappdata_rootdir().ends_with(LR"(\Veltrano\KRS\)")); // the shell knows
    EXPECT_EQ(appdata_rootdir(), L"");
    EXPECT_EQ(traces.messages(), texts{L"E -2147024693 failed to get appdata"});
}

TEST(Paths, AreShortenedByTheFirstFolderFoundInThem)
{
    clearRegistry();
    setValue(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\Applications)", L"BinDir", REG_SZ,
             bytesOf(LR"(C:\App)"));
    const environment_t roaming(L"APPDATA", LR"(C:\A\R)"), local(L"LOCALAPPDATA", LR"(C:\A\L)");
    IN_FRESH_PROCESS({
        EXPECT_EQ(shortpath(LR"(C:\App\a)"), L"bin::a");
        const environment_t moved(L"APPDATA", LR"(D:\Other)"); // the folders are remembered
        EXPECT_EQ(shortpath(L"C:/A/R/Veltrano/KRS/Templates/X.vlm"), L"kri::x.vlm");
        EXPECT_EQ(shortpath(LR"(C:\A\R\Veltrano\KRS\q.txt)"), L"krs::q.txt");
        EXPECT_EQ(shortpath(LR"(C:\A\L/Veltrano\KRS\a)"), L"usr::a");
        EXPECT_EQ(shortpath(LR"(D:\C:\APP\Templates\a)"), LR"(d:\dbg::a)"); // anywhere
        EXPECT_EQ(shortpath_utf8("D:/\xC3\x84\\B"), L"d:/\u00C4/b");
    });
    IN_FRESH_PROCESS({
        EXPECT_EQ(shortpath(L""), L""); // looks nothing up
        const environment_t unset(L"APPDATA", nullptr);
        EXPECT_EQ(shortpath(LR"(C:\App\A)"), LR"(kri::c:\app\a)"); // found in front
    });
}

TEST(Paths, AreMadeLevelByLevel)
{
    const std::wstring root = scratchFolder();
    const std::wstring deep = root + std::wstring(120, L'a') + L"\\" + std::wstring(120, L'b');
    for (const std::wstring& path : {root + L"a\\b/c", LR"(\\?\)" + root + L"d\\", deep + L"\\c"})
        EXPECT_TRUE(makedirs(path) && direxists(path) && !fileexists(path));
    writeFile(root + L"file", "x");
    EXPECT_FALSE(makedirs(root + L"file") || GetLastError() != ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(makedirs(root + L"q?\\x") || GetLastError() != ERROR_INVALID_NAME);
    static texts made; // the server of a network path can't be made, and need not
    made.clear();
    const auto calls = catchCalls(
        "CreateDirectoryW", +[](const wchar_t* path, SECURITY_ATTRIBUTES*) {
            made.push_back(path);
            SetLastError(ERROR_BAD_PATHNAME);
            return FALSE;
        });
    EXPECT_FALSE(makedirs(LR"(\\none\share\x)") || makedirs(deep + L"\\new"));
    EXPECT_EQ(made, (texts{LR"(\\none)", LR"(\\none\share)", LR"(\\?\)" + deep + L"\\new"}));
}
