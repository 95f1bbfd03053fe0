#include "surroundings.h"

#include <comdef.h>

#include "storage/folderlist.h"
#include "support/fakesettings.h"

struct FolderList : Surroundings {
    // prepared gives the folders, marking those whose flags aren't all set, and what was traced.
    std::wstring prepared()
    {
        FolderSet folders;
        prepfolderlist(folders);
        std::wstring all;
        for (const auto& [path, alien, fixeddrive, accessible] : folders)
            all += (alien && fixeddrive && accessible ? L"" : L"own ") + path + L";";
        return shown(all) + traced();
    }

    fakeSettings_t m_provider;
};

TEST_F(FolderList, EachModeHasItsFoldersAndTheFirstOfEqualPathsStays)
{
    const std::wstring none = L"|E 0 strange path ''|E 0 path is invalid ''", done = L"|U done\n",
                       twice = L"|E 0 duplicated path in personal storage folder";
    EXPECT_EQ(prepared(), // nothing is set: the cache, without a name
              L";|E -2147024893 cache '' create failed|E -2147024893 local '' create failed" +
                  twice + none + none + done);
    writeFile(m_root + L"o", ""); // there already, though no folder
    const importPatch_t calls("GetNamedSecurityInfoW", notePath<ERROR_ACCESS_DENIED, 0>);
    auto& values = m_provider.values;
    values = {{L"path_alienstorage_dirs", LR"(|C:\F||%APPDATA%/b|C:\F\|a|)"},
              {L"path_bin_dir", LR"(C:\App)"},
              {L"path_cachestorage_dir", m_root + L"c\\"},
              {L"path_localstorage_dir", m_root + L"o"},
              {L"path_wrgKrs_notinusetestdir", LR"(C:\W)"},
              {L"path_wrgKrs_inusedir", L"%APPDATA%"},
              {L"path_wkgKrsAdmin_dir", m_root + L"none"},
              {L"path_wkgKrsAdmin_notinusetestdir", LR"(C:\Admin)"},
              {L"path_wkgKrsAdmin_inusedir", LR"(C:\Used)"}};
    EXPECT_EQ(prepared(), LR"(C:\A\R\b\;C:\App\templates\;C:\F\;C:\W\;R:\c\;own R:\o;)"
                          LR"(|E 0 duplicated path in alien folders|E 0 strange path 'a\')"
                          LR"(|E 0 path is invalid 'a\'|U cache 'R:\c\'|E 0 strange path )"
                          LR"('%APPDATA%\'|E 0 path is invalid '%APPDATA%\')" +
                              done);
    EXPECT_EQ(shown(noted), LR"(R:\c\|R:\o|)"); // opened for application packages
    values[L"is_personalMode"] = L"1";
    values[L"path_localstorage_dir"] = m_root + L"c\\"; // comes second
    values[L"path_wrgKrs_inusedir"] = LR"(C:\W\)";
    EXPECT_EQ(prepared(), LR"(C:\App\templates\;C:\W\;R:\c\;|U cache 'R:\c\'|U local 'R:\c\')" +
                              twice + LR"(|E 0 duplicated path 'C:\W\')" + done);
    values[L"path_wkgKrsAdmin_dir"] = m_root;
    m_provider.queried.clear();
    EXPECT_EQ(prepared(), LR"(C:\Admin\;C:\Used\;own R:\c\;|U local 'R:\c\')" + done);
    EXPECT_EQ(m_provider.queried.size(), 4u); // the mode, which asks no more, and three folders
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
        {L"B:\\", DRIVE_REMOVABLE, {false, true, true}, L"|E 0 unknown drive type = 2"},
        {L"//none/", DRIVE_FIXED, {false, true, true}, L"|E 0 strange path '//none/'"}};
    for (const auto& [path, drive, result, messages] : cases) {
        FolderRec folder{path, true, true, true};
        type = drive;
        EXPECT_EQ((std::tuple{checkpath(folder), folder.fixeddrive, folder.accessible}), result);
        EXPECT_EQ(traced(), messages);
    }
}

TEST_F(FolderList, LocalFoldersGiveWhatTheMaskFinds)
{
    const std::wstring odd = L"\u00E4 {x};$&'`^%!#@+=[]~,.\U0001F600.VLM", inner = L"s.vlm\\a.vlm";
    for (const std::wstring& file : {odd, inner, std::wstring(L"t")})
        writeFile(m_root + file, "");
    FolderSet folders = {{L"N:\\", true}};
    std::vector<FileRec> files;
    collectall(folders, files);
    for (const std::wstring folder : {L"", L"none\\", L"s.vlm\\", L"t\\"})
        folders.insert({m_root + folder, !folder.empty(), true});
    collectall(folders, files);
    std::wstring found;
    for (const FileRec& file : files)
        found += (file.alien ? L"alien " : L"") + file.folder + file.name + L";";
    EXPECT_EQ(shown(found), L"R:\\s.vlm;R:\\" + odd + L";alien R:\\s.vlm\\a.vlm;");
    EXPECT_EQ(traced(), LR"(|U no local folders|U local folders|U   'R:\*.vlm'|U   'R:\none\*.vlm')"
                        LR"(|U   'R:\s.vlm\*.vlm'|U   'R:\t\*.vlm')"
                        LR"(|E -2147024773 failed access files from folder 'R:\t\')");
}

TEST_F(FolderList, ErrorsAreTracedAndEndThere)
{
    m_provider.values[L"path_wkgKrsAdmin_dir"] = m_root;
    FolderRec share{LR"(\\s\)"};
    std::vector<FileRec> files;
    for (const auto call : {raise<std::bad_alloc>, raise<_com_error, E_ABORT>, raise<int, 1>}) {
        const importPatch_t calls("FindFirstFileW", call);
        noted += prepared();
        EXPECT_TRUE(checkpath(share));
        enumfnames(share, files);
        noted += traced();
    }
    EXPECT_EQ(noted, LR"(|E 0 [STD]std::bad_alloc|E 0 exception|U   '\\s\*.vlm')"
                     LR"(|E -2147418113 [STD]std::bad_alloc)"
                     LR"(|E -2147467260 [COM]|E 0 exception|U   '\\s\*.vlm'|E -2147467260 [COM])"
                     LR"(|E 0 oo|E 0 exception|U   '\\s\*.vlm'|E -2147418113 oo)");
}
