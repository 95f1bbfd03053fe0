#include <process.h>
#include <windows.h>
#include <psapi.h>

#include <cstring>

#include "installation.h"

namespace {

// setUiLanguage changes the system's own function within this process: the DLL asks while it is being
// loaded, when its imports can't be caught yet.
void setUiLanguage(LANGID language)
{
    const auto function = reinterpret_cast<BYTE*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32"), "GetUserDefaultUILanguage")));
    BYTE code[] = {0xB8, 0, 0, 0, 0, 0xC3}; // mov eax, language; ret
    std::memcpy(code + 1, &language, sizeof language);
    DWORD old = 0;
    VirtualProtect(function, sizeof code, PAGE_EXECUTE_READWRITE, &old);
    std::memcpy(function, code, sizeof code);
}

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
        setText(HKEY_CURRENT_USER, key, L"Version", L"winxp64");
        EXPECT_EQ(0, _wspawnl(_P_WAIT, program.c_str(), L"system_test", L"--gtest_brief=1",
                              L"--gtest_filter=*AnOlderSystem*", nullptr));
        RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
        return;
    }
    const std::wstring product = L"Veltrano Personal Security"; // by the branding DLL
    const std::wstring german =
        L"Der Passwort-Manager von " + product + L" sch\u00FCtzt Ihre Anmeldedaten.";
    const std::wstring english = product + L" Password Manager is protecting your logons.";
    setNumber(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano\Applications\DashBoard\IDCard)",
              L"IDCard_SS", 2);
    // Of Austria there is no file of its own, and of Italian none at all.
    for (const auto& [language, text] :
         {std::pair{0x0407, german}, {0x0C07, german}, {0x0410, english}}) {
        SCOPED_TRACE(language);
        setUiLanguage(static_cast<LANGID>(language));
        {
            const plugin_t plugin;
            EXPECT_EQ(text, plugin.statusText());
            EXPECT_EQ(0u, plugin.property(propertyName).find(product));
            EXPECT_TRUE(isLanguageFileMapped());
        }
        EXPECT_FALSE(isLanguageFileMapped()) << "without the plug-in";
    }
}

} // namespace
