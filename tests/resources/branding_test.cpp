#include "resources/branding.h"

#include "installation.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "resources/strings.h"
#include "support/freshprocess.h"
#include "support/registry.h"
#include "support/tracerecorder.h"

// The branding DLL is loaded once in a process and stays. So each of these cases has a process of
// its own.

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
constexpr wchar_t hostKey[] = L"SOFTWARE\\Veltrano\\Branding\\Host"; // the host's string 900
const std::wstring brandingDll = builtFile(L"Branding.dll").wstring();

int loads, frees;
HMODULE WINAPI loadAfterAnother(LPCWSTR path, HANDLE, DWORD flags)
{
    if (++loads == 1)
        CBranding::LoadResourceDLL(); // as another thread would
    return flags == LOAD_LIBRARY_AS_DATAFILE ? LoadLibraryW(path) : nullptr;
}

} // namespace

TEST(BrandingDeathTest, EachFailureLeavesItsLineAndTheNextNeedTriesAgain)
{
    const std::wstring noPath = L"|U Failed to find DllPath under Branding key in registry";
    const std::wstring notLoaded =
        L"|U failed to load resource dll , GetLastError returned 0x000000";
    const std::tuple<DWORD, std::wstring, std::wstring> cases[] = {
        {0, L"", L"|U Open Branding key " + std::wstring(hostKey) + L" in registry Failed"},
        {REG_BINARY, brandingDll, noPath},
        {REG_SZ, L"C:\\" + std::wstring(256, L'x'), notLoaded + L"02"},
        {REG_EXPAND_SZ, L"%ComSpec%", notLoaded + L"02"}, // variables stay
    };
    IN_FRESH_PROCESS({
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding");
        const givenString_t named(IDS_HOST_BRANDING_KEY, hostKey); // not there: the default
        traceRecorder_t trace;
        for (const auto& [type, value, line] : cases) {
            if (type)
                setValue(HKEY_LOCAL_MACHINE, defaultKey, L"DLLPath", value, type);
            EXPECT_EQ(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(GetProductName(), L"");
            EXPECT_EQ(trace.joined(), line + line);
        }
        setValue(HKEY_LOCAL_MACHINE, hostKey, L"DLLPath", brandingDll);
        const importPatch_t load("LoadLibraryExW", loadAfterAnother);
        const importPatch_t free(
            "FreeLibrary", +[] { return ++frees; });
        EXPECT_EQ(GetProductName(), L"Veltrano Personal Security");
        EXPECT_EQ(GetProductName(), L"Veltrano Personal Security"); // loads nothing more
        EXPECT_TRUE(loads == 2 && frees == 1);                      // the slower one's own, once
        EXPECT_EQ(CBranding::DllPath(), brandingDll);
        EXPECT_EQ(trace.joined(), L""); // success leaves no trace
    });
}
