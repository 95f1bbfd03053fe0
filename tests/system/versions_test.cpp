#include "installation.h"

#include <windows.h>
#include <psapi.h>

namespace {

bool isLanguageFileMapped()
{
    MEMORY_BASIC_INFORMATION area;
    wchar_t name[300] = {};
    for (char* at = nullptr; VirtualQuery(at, &area, sizeof area); at += area.RegionSize)
        if (GetMappedFileNameW(GetCurrentProcess(), at, name, 300) && wcsstr(name, L".mui"))
            return true;
    return false;
}

using Versions = installedTest;

TEST_F(Versions, ACurrentSystemOpensNoLanguageFile)
{
    const plugin_t plugin;
    EXPECT_EQ(L"", plugin.property(propertyName) + plugin.property(propertyExplanation));
    EXPECT_EQ(L"Password Manager", plugin.property(propertyFixedName));
    EXPECT_FALSE(isLanguageFileMapped());
}

TEST_F(Versions, AnOlderSystemGetsItsTextsFromTheLanguageFiles)
{
    if (!role()) { // run again as version 5.2
        if (!setOldSystem(fs::path(moduleFileName(nullptr)).filename()))
            GTEST_SKIP() << "this system can't show a program an older one";
        const processResult_t older = playing(L"older").result();
        EXPECT_EQ(0u, older.status) << older.out;
        RegDeleteTreeW(HKEY_CURRENT_USER, LR"(Software\Wine\AppDefaults)");
        return;
    }
    {
        const plugin_t plugin;
        EXPECT_EQ(L"Veltrano Personal Security Password Manager", plugin.property(propertyName));
        EXPECT_TRUE(isLanguageFileMapped());
    }
    EXPECT_FALSE(isLanguageFileMapped()) << "without the plug-in";
}

TEST_F(Versions, EachFileSaysWhatItIs)
{
    const fs::path bin = fs::path(moduleFileName(nullptr)).parent_path().parent_path();
    for (const wchar_t* name : {L"vlhost.exe", L"vlbackup.exe", L"vltrace.exe", L"vlsetup.exe",
                                L"vlagent.exe", L"VLUserConsole.exe", L"VLOnlineIDs.dll",
                                L"VloSet.dll", L"VLFPApi.dll", L"Branding.dll"}) {
        SCOPED_TRACE(utf8FromWide(name));
        const fs::path file = bin / name;
        std::string block(GetFileVersionInfoSizeW(file.c_str(), nullptr), '\0');
        GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data());
        const auto text = [&](const wchar_t* item) {
            for (const wchar_t* language : {L"040904B0", L"000004B0"}) {
                void* value = nullptr;
                UINT size = 0;
                const std::wstring path =
                    LR"(\StringFileInfo\)" + (language + (LR"(\)" + std::wstring(item)));
                if (VerQueryValueW(block.data(), path.c_str(), &value, &size))
                    return std::wstring(static_cast<const wchar_t*>(value));
            }
            return std::wstring();
        };
        EXPECT_EQ(name, text(L"OriginalFilename"));
        EXPECT_NE(L"", text(L"FileDescription"));
        EXPECT_EQ(L"1.0.0", text(L"ProductVersion"));
        const CLoadedModule module(LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        EXPECT_TRUE(file.extension() == L".dll" ||
                    FindResourceW(module.get(), MAKEINTRESOURCEW(1), RT_GROUP_ICON));
    }
}

} // namespace
