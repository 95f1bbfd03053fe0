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
    if (LOBYTE(GetVersion()) != 5) { // run again as version 5.2
        fs::current_path(m_built);   // the other process removes this one's
        const fs::path program = moduleFileName(nullptr);
        const std::wstring key = LR"(Software\Wine\AppDefaults\)" + program.filename().wstring();
        setValue(HKEY_CURRENT_USER, key, L"Version", L"winxp64");
        const processResult_t older =
            process_t(program, L"--gtest_brief=1 --gtest_filter=*AnOlderSystem*").result();
        EXPECT_EQ(0u, older.status) << older.out;
        RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
        return;
    }
    {
        const plugin_t plugin;
        EXPECT_EQ(L"Veltrano Personal Security Password Manager", plugin.property(propertyName));
        EXPECT_TRUE(isLanguageFileMapped());
    }
    EXPECT_FALSE(isLanguageFileMapped()) << "without the plug-in";
}

} // namespace
