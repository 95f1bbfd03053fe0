#include "surroundings.h"

#include <algorithm>

#include <comdef.h>

#include "storage/folderlist.h"
#include "support/fakesettings.h"

std::wstring prepared()
{
    FolderSet folders;
    prepfolderlist(folders);
    std::wstring all;
    for (const auto& [path, alien, fixeddrive, accessible] : folders)
        all += (alien && fixeddrive && accessible ? L"" : L"own ") + path + L"|";
    return all;
}

struct FolderList : Surroundings {
    fakeSettings_t m_provider;
};

TEST_F(FolderList, EachModeHasItsFoldersAndTheFirstOfEqualPathsStays)
{
    EXPECT_EQ(prepared(), L"|"); // nothing is set: the cache, without a name
    EXPECT_EQ(traced(), L"E -2147024893 cache '' create failed|"
                        L"E -2147024893 local '' create failed|"
                        L"E 0 duplicated path in personal storage folder|"
                        L"E 0 strange path ''|E 0 path is invalid ''|"
                        L"E 0 strange path ''|E 0 path is invalid ''|U done\n|");
    const std::wstring cache = m_root + L"c\\", own = m_root + L"o";
    writeFile(own, ""); // there already, though no folder
    const importPatch_t calls("GetNamedSecurityInfoW", notePath<ERROR_ACCESS_DENIED, 0>);
    m_provider.values = {{L"path_alienstorage_dirs", LR"(|C:\F||%APPDATA%/b|C:\F\|a|)"},
                         {L"path_bin_dir", LR"(C:\App)"},
                         {L"path_cachestorage_dir", cache},
                         {L"path_localstorage_dir", own},
                         {L"path_wrgKrs_notinusetestdir", LR"(C:\W)"},
                         {L"path_wrgKrs_inusedir", LR"(%APPDATA%)"},
                         {L"path_wkgKrsAdmin_dir", m_root + L"none"},
                         {L"path_wkgKrsAdmin_notinusetestdir", LR"(C:\Admin)"},
                         {L"path_wkgKrsAdmin_inusedir", LR"(C:\Used)"}};
    EXPECT_EQ(prepared(),
              LR"(C:\A\R\b\|C:\App\templates\|C:\F\|C:\W\|)" + cache + L"|own " + own + L"|");
    EXPECT_EQ(traced(),
              LR"(E 0 duplicated path in alien folders|E 0 strange path 'a\'|)"
              LR"(E 0 path is invalid 'a\'|U cache ')" +
                  cache +
                  L"'|"
                  L"E 0 strange path '%APPDATA%\\'|E 0 path is invalid '%APPDATA%\\'|U done\n|");
    EXPECT_EQ(noted, cache + L"|" + own + L"|"); // opened for application packages
    m_provider.values[L"is_personalMode"] = L"1";
    m_provider.values[L"path_localstorage_dir"] = cache; // comes second
    m_provider.values[L"path_wrgKrs_inusedir"] = LR"(C:\W\)";
    EXPECT_EQ(prepared(), LR"(C:\App\templates\|C:\W\|)" + cache + L"|");
    m_provider.values[L"path_wkgKrsAdmin_dir"] = m_root;
    EXPECT_TRUE(traced().ends_with(L"folder|E 0 duplicated path 'C:\\W\\'|U done\n|"));
    m_provider.queried.clear();
    EXPECT_EQ(prepared(), LR"(C:\Admin\|C:\Used\|own )" + cache + L"|");
    EXPECT_EQ(traced(), L"U local '" + cache + L"'|U done\n|");
    EXPECT_EQ(std::ranges::count(m_provider.queried, L"is_personalMode"), 0);
}

TEST_F(FolderList, OnlyFixedAndNetworkPathsCanBeUsed)
{
    static UINT type;
    const importPatch_t calls(
        "GetDriveTypeW", +[] { return type; });
    const std::tuple<std::wstring, UINT, std::tuple<bool, bool, bool>, const wchar_t*> cases[] = {
        {LR"(C:\none\)", DRIVE_FIXED, {true, true, true}, L""},
        {m_root, DRIVE_REMOTE, {true, false, true}, L""}, // nothing found there, but readable
        {LR"(\\none\share\)", DRIVE_FIXED, {true, false, false}, L""},
        {L"B:\\", DRIVE_REMOVABLE, {false, true, true}, L"E 0 unknown drive type = 2|"},
        {L"//none/", DRIVE_FIXED, {false, true, true}, L"E 0 strange path '//none/'|"}};
    for (const auto& [path, drive, result, messages] : cases) {
        FolderRec folder{path, true, true, true};
        type = drive;
        EXPECT_EQ((std::tuple{checkpath(folder), folder.fixeddrive, folder.accessible}), result);
        EXPECT_EQ(traced(), messages);
    }
}

TEST_F(FolderList, LocalFoldersGiveWhatTheMaskFinds)
{
    const std::wstring odd = L"\u00E4 {x};$&'`^%!#@+=[]~,.\U0001F600.VLM", sub = L"sub.vlm\\";
    EXPECT_TRUE(makedirs(m_root + sub));
    for (const std::wstring& file : {odd, std::wstring(L"t"), sub + L"a.vlm"})
        writeFile(m_root + file, "");
    FolderSet folders = {{L"N:\\", true}};
    std::vector<FileRec> files;
    collectall(folders, files);
    for (const std::wstring folder : {L"", L"none\\", L"sub.vlm\\", L"t\\"})
        folders.insert({m_root + folder, !folder.empty(), true});
    collectall(folders, files);
    std::wstring found;
    for (const FileRec& file : files)
        found += (file.alien ? L"alien " : L"") + file.folder + file.name + L"|";
    EXPECT_EQ(found, m_root + L"sub.vlm|" + m_root + odd + L"|alien " + m_root + sub + L"a.vlm|");
    const std::wstring line = L"U   '" + m_root,
                       failed = L"E -2147024773 failed access files from folder '";
    EXPECT_EQ(traced(), L"U no local folders|U local folders|" + line + L"*.vlm'|" + line +
                            L"none\\*.vlm'|" + line + L"sub.vlm\\*.vlm'|" + line + L"t\\*.vlm'|" +
                            failed + m_root + L"t\\'|");
}

TEST_F(FolderList, ErrorsAreTracedAndEndThere)
{
    m_provider.values[L"path_wkgKrsAdmin_dir"] = m_root;
    FolderRec share{LR"(\\s\)"};
    std::vector<FileRec> files;
    for (const auto call : {raise<std::bad_alloc>, raise<_com_error, E_ABORT>, raise<int, 1>}) {
        const importPatch_t calls("FindFirstFileW", call);
        EXPECT_EQ(prepared(), L"");
        EXPECT_TRUE(checkpath(share));
        enumfnames(share, files);
    }
    const std::wstring between = LR"(E 0 exception|U   '\\s\*.vlm'|)";
    EXPECT_EQ(traced(), L"E 0 [STD]std::bad_alloc|" + between +
                            L"E -2147418113 [STD]std::bad_alloc|E -2147467260 [COM]|" + between +
                            L"E -2147467260 [COM]|E 0 oo|" + between + L"E -2147418113 oo|");
}
