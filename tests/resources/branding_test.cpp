#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "resources/strings.h"
#include "installation.h"
#include "support/tracerecorder.h"

// The branding DLL is loaded once in a process and stays. So each of these cases has a process of its own.

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
const std::wstring brandingDll = builtFile(L"Branding.dll").wstring();

void setPath(const std::wstring& path, DWORD type = REG_SZ, size_t size = 0)
{
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, defaultKey, L"DLLPath", type, path.c_str(),
                    static_cast<DWORD>(size ? size : path.size() * 2 + 2));
}

// said gives the messages without the functions' entries and ends.
std::wstring said(traceRecorder_t& trace)
{
    std::wstring all;
    for (const traceRecord_t& record : trace.all()) {
        if (record.level == 'U' || record.level == 'E')
            all += record.text;
    }
    return all;
}

} // namespace

TEST(BrandingDeathTest, EachFailureLeavesItsLineAndTheNextNeedTriesAgain)
{
    const std::wstring noPath = L"Failed to find DllPath under Branding key in registry";
    const std::wstring notLoaded = L"failed to load resource dll , GetLastError returned 0x000000";
    const size_t whole = brandingDll.size() * 2 + 2;
    const struct {
        const char* what;
        DWORD type;
        std::wstring value;
        size_t size;
        std::wstring line;
    } cases[] = {
        {"bytes", REG_BINARY, brandingDll, whole, noPath},
        {"odd length, zero behind", REG_SZ, brandingDll, whole + 1, noPath},
        {"not terminated", REG_SZ, L"abX", 4, noPath},
        {"longer than 520 bytes", REG_SZ, std::wstring(260, L'x'), 522, noPath},
        {"520 bytes fit", REG_SZ, L"C:\\" + std::wstring(256, L'x'), 520, notLoaded + L"02"},
        {"variables stay", REG_EXPAND_SZ, L"%D%", 8, notLoaded + L"02"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        testing::GTEST_FLAG(death_test_style) = "threadsafe";
        const auto child = [&c] {
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding");
            SetEnvironmentVariableW(L"D", brandingDll.c_str());
            setPath(c.value, c.type, c.size);
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(said(trace), c.line);
            EXPECT_EQ(GetProductName(), L"");
            EXPECT_EQ(said(trace), c.line);
            setPath(brandingDll);
            EXPECT_EQ(GetProductName(), L"Veltrano Personal Security");
            EXPECT_EQ(CBranding::DllPath(), brandingDll);
            setPath(L"C:\\other.dll"); // not looked at again
            EXPECT_EQ(CBranding::DllPath(), brandingDll);
            EXPECT_EQ(said(trace), L""); // success leaves no trace
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        };
        EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
    }
}
