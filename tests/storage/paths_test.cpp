#include "support/surroundings.h"

using Paths = Surroundings;

TEST_F(Paths, BecomeOtherPaths)
{
    const std::wstring longer(249, L'x'), longest(259, L'v');
    SetEnvironmentVariableW(L"APPDATA", LR"(C:/R\)");
    SetEnvironmentVariableW(L"LOCALAPPDATA", longest.c_str());
    const std::tuple<std::wstring (*)(const std::wstring&), std::wstring, std::wstring> cases[] = {
        {longform, longer.substr(1), longer.substr(1)},
        {longform, longer, LR"(\\?\)" + longer},
        {expandenv, L"%VL_NONE%%LOCALAPPDATA%", L"%VL_NONE%" + longest},
        {collapseenv, LR"(C:/R\C:/R\)" + longest, LR"(%appdata%C:/R\)" + longest},
        {collapseenv, L"x" + longest, L"x%localappdata%"},
        {collapseenv, LR"(c:/r\x)", LR"(c:/r\x)"}};
    for (const auto& [tool, path, result] : cases)
        EXPECT_EQ(tool(path), result);
    bool marked = false;
    EXPECT_TRUE(stripalienmark(L"alien|alien|", marked) == L"alien|" && marked);
    EXPECT_TRUE(stripalienmark(L"ALIEN|", marked) == L"ALIEN|" && !marked);
    EXPECT_EQ(appdata_templatesdir(), LR"(C:/R/Veltrano\KRS\Templates\)");
    EXPECT_EQ(localappdata_rootdir(), longest + LR"(\Veltrano\KRS\)");
    SetEnvironmentVariableW(L"LOCALAPPDATA", (longest + L"v").c_str()); // too long to be read
    SetEnvironmentVariableW(L"APPDATA", nullptr);
    EXPECT_EQ(collapseenv(L"x"), L"%appdata%x");                              // found in front
    EXPECT_TRUE(localappdata_rootdir().ends_with(LR"(Local\Veltrano\KRS\)")); // the shell knows
    EXPECT_EQ(appdata_rootdir(), L"");
    EXPECT_EQ(traced(), L"|E -2147024693 failed to get appdata");
}

TEST_F(Paths, AreShortenedByTheFirstFolderFoundInThem)
{
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", LR"(C:\App)");
    IN_FRESH_PROCESS({
        EXPECT_EQ(shortpath(LR"(C:\App\a)"), L"bin::a");
        SetEnvironmentVariableW(L"APPDATA", LR"(D:\Other)"); // the folders are remembered
        EXPECT_EQ(shortpath(L"C:/A/R/Veltrano/KRS/Templates/X.vlm"), L"kri::x.vlm");
        EXPECT_EQ(shortpath(LR"(C:\A\R\Veltrano\KRS\q.txt)"), L"krs::q.txt");
        EXPECT_EQ(shortpath(LR"(C:\A\L/Veltrano\KRS\a)"), L"usr::a");
        EXPECT_EQ(shortpath(LR"(D:\C:\APP\Templates\a)"), LR"(d:\dbg::a)"); // anywhere
        EXPECT_EQ(shortpath_utf8("D:/\xC3\x84\\B"), L"d:/\u00C4/b");
    });
    IN_FRESH_PROCESS({
        EXPECT_EQ(shortpath(L""), L""); // looks nothing up
        SetEnvironmentVariableW(L"APPDATA", nullptr);
        EXPECT_EQ(shortpath(LR"(C:\App\A)"), LR"(kri::c:\app\a)"); // found in front
    });
}

TEST_F(Paths, AreMadeLevelByLevel)
{
    const std::wstring deep = m_root + std::wstring(120, L'a') + L"\\" + std::wstring(120, L'b');
    for (const std::wstring& path : {m_root + L"a\\b/c", LR"(\\?\)" + m_root + L"d\\", deep})
        EXPECT_TRUE(makedirs(path) && direxists(path) && !fileexists(path));
    EXPECT_FALSE(makedirs(m_root + L"q?\\x") || GetLastError() != ERROR_INVALID_NAME);
    // The server of a network path can't be made, and need not.
    const importPatch_t calls("CreateDirectoryW", notePath<FALSE, ERROR_BAD_PATHNAME>);
    EXPECT_FALSE(makedirs(LR"(\\none\share\x)") || makedirs(deep + L"\\new") ||
                 makedirs(deep + L"\\new\\x"));
    const std::wstring level = LR"(\\?\)" + deep + L"\\new|"; // as the last one, and above it
    EXPECT_EQ(noted, LR"(\\none|\\none\share|)" + level + level);
}
