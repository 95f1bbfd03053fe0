#include "surroundings.h"

#include <algorithm>

#include "storage/folderlist.h"
#include "support/fakesettings.h"

UINT driveType = DRIVE_FIXED; // of every drive

std::wstring flagged(const FolderRec& folder)
{
    const int flags = folder.alien * 100 + folder.fixeddrive * 10 + folder.accessible;
    return std::to_wstring(1000 + flags).substr(1) + L" " + folder.path;
}

class FolderList : public testing::Test
{
protected:
    texts prepared()
    {
        FolderSet folders;
        prepfolderlist(folders);
        texts all;
        std::ranges::transform(folders, std::back_inserter(all), flagged);
        return all;
    }
    fakeSettings_t m_provider;
    traceRecorder_t m_traces;
    importPatch_t m_drives = catchCalls(
        "GetDriveTypeW", +[](const wchar_t*) { return driveType; });
    const std::wstring m_root = scratchFolder(), m_cache = m_root + L"c\\", m_own = m_root + L"o\\";
};

TEST_F(FolderList, EachModeHasItsFoldersAndTheFirstOfEqualPathsStays)
{
    m_provider.values = {{L"path_alienstorage_dirs", LR"(|C:\F||%APPDATA%/b|C:\F\|a|)"},
                         {L"path_bin_dir", LR"(C:\App)"},
                         {L"path_cachestorage_dir", m_cache},
                         {L"path_localstorage_dir", m_own},
                         {L"path_wrgKrs_notinusetestdir", LR"(C:\W)"},
                         {L"path_wrgKrs_inusedir", LR"(%APPDATA%)"},
                         {L"path_wkgKrsAdmin_dir", m_root + L"none"},
                         {L"path_wkgKrsAdmin_notinusetestdir", LR"(C:\Admin)"}};
    const environment_t variable(L"APPDATA", LR"(C:\v)");
    const texts normal = {LR"(111 C:\App\templates\)", LR"(111 C:\F\)", LR"(111 C:\W\)",
                          L"111 " + m_cache,           L"011 " + m_own, LR"(111 C:\v\b\)"};
    EXPECT_EQ(prepared(), normal);
    EXPECT_EQ(m_traces.messages(),
              (texts{L"E 0 duplicated path in alien folders", LR"(E 0 strange path 'a\')",
                     LR"(E 0 path is invalid 'a\')", L"U cache '" + m_cache + L"'",
                     L"U local '" + m_own + L"'", LR"(E 0 strange path '%APPDATA%\')",
                     LR"(E 0 path is invalid '%APPDATA%\')", L"U done\n"}));
    m_provider.values[L"is_personalMode"] = L"1";
    m_provider.values[L"path_cachestorage_dir"] = m_own; // comes first
    EXPECT_EQ(prepared(), (texts{normal[0], normal[2], L"111 " + m_own}));
    EXPECT_EQ(std::ranges::count(m_provider.queried, L"path_alienstorage_dirs"), 1);
    m_provider.values[L"path_wkgKrsAdmin_dir"] = m_root;
    EXPECT_EQ(prepared(), (texts{LR"(111 C:\Admin\)", L"011 " + m_own}));
    EXPECT_EQ(std::ranges::count(m_provider.queried, L"is_personalMode"), 2);
}

TEST_F(FolderList, OwnFoldersStayWhenTheyCannotBeMade)
{
    EXPECT_EQ(prepared(), (texts{L"111 "})); // nothing is set
    texts traced = m_traces.messages();
    traced.resize(3);
    EXPECT_EQ(traced, (texts{L"E -2147024893 cache '' create failed",
                             L"E -2147024893 local '' create failed",
                             L"E 0 duplicated path in personal storage folder"}));
    writeFile(m_root + L"c", "");
    m_provider.values = {{L"path_cachestorage_dir", m_cache + L"c"},
                         {L"path_localstorage_dir", m_root + L"c"}};
    EXPECT_EQ(prepared(), (texts{L"011 " + m_root + L"c", L"111 " + m_cache + L"c"}));
}

TEST_F(FolderList, OnlyFixedAndNetworkPathsCanBeUsed)
{
    writeFile(m_root + L"f", "");
    const std::tuple<std::wstring, UINT, const wchar_t*, texts> cases[] = {
        {LR"(C:\none\)", DRIVE_FIXED, L"111", {}},
        {m_root, DRIVE_REMOTE, L"101", {}}, // nothing found there, but readable
        {m_root + L"f\\", DRIVE_REMOTE, L"100", {}},
        {LR"(\\none\share\)", DRIVE_FIXED, L"100", {}},
        {m_root, DRIVE_REMOVABLE, nullptr, {L"E 0 unknown drive type = 2"}},
        {L"//none/share/", DRIVE_FIXED, nullptr, {L"E 0 strange path '//none/share/'"}},
        {L"a", DRIVE_FIXED, nullptr, {L"E 0 strange path 'a'"}}};
    for (const auto& [path, drive, flags, traced] : cases) {
        FolderRec folder{path, true, true, true};
        driveType = drive;
        EXPECT_EQ(checkpath(folder), flags != nullptr);
        EXPECT_EQ(flagged(folder), std::wstring(flags ? flags : L"111") + L" " + path);
        EXPECT_EQ(m_traces.messages(), traced);
    }
    driveType = DRIVE_FIXED;
}

TEST_F(FolderList, LocalFoldersGiveWhatTheMaskFinds)
{
    const std::wstring odd = L"\u00E4 {x};$&'`^%!#@+=[]~,.\U0001F600.VLM";
    const std::wstring deep =
        m_root + std::wstring(130, L'd') + L"\\" + std::wstring(130, L'e') + L"\\";
    ASSERT_TRUE(makedirs(deep) && makedirs(m_root + L"sub.vlm"));
    for (const std::wstring& file : {m_root + odd, m_root + L"a.txt", deep + L"a.vlm"})
        writeFile(file, "");
    std::vector<FileRec> files;
    collectall({{m_root, false, true, true},
                {deep, true, true, true},
                {m_root + L"sub.vlm\\", true, true, true}, // nothing there
                {L"N:\\", true, false, true},
                {m_root + L"a.txt\\", true, true, true}},
               files);
    texts found;
    for (const FileRec& file : files)
        found.push_back((file.alien ? L"1 " : L"0 ") + file.folder + file.name);
    std::ranges::sort(found);
    EXPECT_EQ(found,
              (texts{L"0 " + m_root + L"sub.vlm", L"0 " + m_root + odd, L"1 " + deep + L"a.vlm"}));
    EXPECT_EQ(m_traces.messages(),
              (texts{L"U local folders", L"U   '" + shortpath(m_root + L"*.vlm") + L"'",
                     L"U   '" + shortpath(m_root + L"a.txt\\*.vlm") + L"'",
                     L"E -2147024773 failed access files from folder '" + m_root + L"a.txt\\'",
                     L"U   '" + shortpath(deep + L"*.vlm") + L"'",
                     L"U   '" + shortpath(m_root + L"sub.vlm\\*.vlm") + L"'"}));
}
