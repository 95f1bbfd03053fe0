#include "storage/folderlist.h"

#include "support/fakesettings.h"
#include "support/surroundings.h"

#include <comdef.h>

#include <stdexcept>

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
    writeFile(m_root + L"o", ""); // there already, though no folder
    const importPatch_t calls("GetNamedSecurityInfoW", notePath<ERROR_ACCESS_DENIED, 0>);
    auto& values = m_provider.values;
    values = {{L"path_alienstorage_dirs", LR"(|C:\F||%APPDATA%/b|C:\F\|a|)"},
              {L"path_bin_dir", LR"(C:\App)"},
              {L"path_localstorage_dir", m_root + L"o"},
              {L"path_wrgKrs_notinusetestdir", LR"(C:\W)"},
              {L"path_wrgKrs_inusedir", LR"(%APPDATA%\)"},
              {L"path_wkgKrsAdmin_dir", m_root + L"none"},
              {L"path_wkgKrsAdmin_notinusetestdir", LR"(C:\Admin)"},
              {L"path_wkgKrsAdmin_inusedir", LR"(C:\Used)"}};
    EXPECT_EQ(prepared(), LR"(;C:\A\R\b\;C:\App\templates\;C:\F\;C:\W\;own R:\o;)"
                          LR"(|E 0 duplicated path in alien folders|E 0 strange path 'a\')"
                          LR"(|E 0 path is invalid 'a\'|E -2147024893 cache '' create failed)"
                          LR"(|E 0 strange path '%APPDATA%\'|E 0 path is invalid '%APPDATA%\')"
                          L"|U done\n");
    values[L"is_personalMode"] = L"1";
    values[L"path_cachestorage_dir"] = values[L"path_localstorage_dir"] = m_root + L"c\\";
    values[L"path_wrgKrs_inusedir"] = LR"(C:\W\)";
    EXPECT_EQ(prepared(), LR"(C:\App\templates\;C:\W\;R:\c\;|U cache 'R:\c\'|U local 'R:\c\')"
                          L"|E 0 duplicated path in personal storage folder"
                          L"|E 0 duplicated path 'C:\\W\\'|U done\n");
    EXPECT_EQ(shown(noted), LR"(R:\o|R:\c\|R:\c\|)"); // opened for application packages
    values[L"path_wkgKrsAdmin_dir"] = m_root;
    m_provider.queried.clear();
    EXPECT_EQ(prepared(), L"C:\\Admin\\;C:\\Used\\;own R:\\c\\;|U local 'R:\\c\\'|U done\n");
    EXPECT_EQ(m_provider.queried.size(), 4u); // the mode, which asks no more, and three folders
}

TEST_F(FolderList, AnExceptionEndsTheStepWithItsLine)
{
    static void (*raise)();
    const importPatch_t search(
        "FindFirstFileW", +[]() -> HANDLE { return raise(), nullptr; });
    m_provider.values[L"path_cachestorage_dir"] = LR"(C:
one\)";
    const std::tuple<void (*)(), const wchar_t*, const wchar_t*> cases[] = {
        {[] { throw _com_error(E_ABORT); }, L"-2147467260 [COM]", L"-2147467260 [COM]"},
        {[] { throw std::runtime_error("why"); }, L"0 [STD]why", L"-2147418113 [STD]why"},
        {[] { throw 7; }, L"0 oo", L"-2147418113 oo"}};
    for (const auto& [thrown, preparing, listing] : cases) {
        raise = thrown;
        std::vector<FileRec> files;
        FolderRec network{LR"(\\none\share\)", true, true, true};
        EXPECT_EQ(prepared(), std::wstring(L"|E ") + preparing);
        enumfnames({LR"(Q:\)", true, true, true}, files);
        EXPECT_EQ(traced(), std::wstring(LR"(|U   'q:\*.vlm'|E )") + listing);
        EXPECT_TRUE(checkpath(network) && traced() == L"|E 0 exception");
    }
}

TEST_F(FolderList, OnlyFixedAndNetworkPathsCanBeUsed)
{
    const auto type = [](const wchar_t* drive) { // 2 for B:, 3 for C:, 4 for c:, without a folder
        return drive[3] ? 0 : std::wstring(L"..BCc").find(*drive);
    };
    const importPatch_t calls("GetDriveTypeW", +type);
    const std::pair<std::wstring, std::tuple<bool, bool, bool, std::wstring>> cases[] = {
        {LR"(C:\none\)", {true, true, true, L""}},
        {m_root, {true, false, true, L""}}, // nothing found there, but readable
        {LR"(\\none\share\)", {true, false, false, L""}},
        {LR"(B:\b\)", {false, true, true, L"|E 0 unknown drive type = 2"}},
        {L"//none/", {false, true, true, L"|E 0 strange path '//none/'"}}};
    for (const auto& [path, outcome] : cases) {
        FolderRec folder{path, true, true, true};
        const bool usable = checkpath(folder);
        EXPECT_EQ(std::tuple(usable, folder.fixeddrive, folder.accessible, traced()), outcome);
    }
}

TEST_F(FolderList, LocalFoldersGiveWhatTheMaskFinds)
{
    writeFile(m_root + L"s.vlm\\\u00E4 %TEMP%\U0001F600.VLM", "");
    writeFile(m_root + L"t", "");
    FolderSet folders = {{LR"(\\none\share\)", true}};
    std::vector<FileRec> files;
    collectall(folders, files);
    for (const std::wstring folder : {L"", L"none\\", L"s.vlm\\", L"t\\"})
        folders.insert({m_root + folder, !folder.empty(), true});
    collectall(folders, files);
    std::wstring found;
    for (const FileRec& file : files)
        found += (file.alien ? L"alien " : L"") + file.folder + file.name + L";";
    EXPECT_EQ(shown(found), L"R:\\s.vlm;alien R:\\s.vlm\\\u00E4 %TEMP%\U0001F600.VLM;");
    WIN32_FIND_DATAW none;
    FindFirstFileW((m_root + L"t\\*.vlm").c_str(), &none);
    const HRESULT noFolder = HRESULT_FROM_WIN32(GetLastError()); // the release decides
    EXPECT_EQ(traced(), LR"(|U no local folders|U local folders|U   'R:\*.vlm'|U   'R:\none\*.vlm')"
                        LR"(|U   'R:\s.vlm\*.vlm'|U   'R:\t\*.vlm'|E )" +
                            std::to_wstring(noFolder) +
                            LR"( failed access files from folder 'R:\t\')");
}
