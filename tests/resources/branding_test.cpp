#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "resources/strings.h"
#include "installation.h"
#include "support/tracerecorder.h"

#include <functional>

// The branding DLL is loaded once in a process and stays. So each of these cases has a process of its own.

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
const std::wstring brandingDll = builtFile(L"Branding.dll").wstring();

std::wstring hostKey; // string 900 of the program
decltype(&LoadStringW) loadString;

int WINAPI hostLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_HOST_BRANDING_KEY || module != GetModuleHandleW(nullptr))
        return loadString(module, id, buffer, size);
    return static_cast<int>(hostKey.copy(buffer, hostKey.size()));
}

void setPath(const wchar_t* key, const std::wstring& path, DWORD type = REG_SZ, size_t size = 0)
{
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, L"DLLPath", type, path.c_str(),
                    static_cast<DWORD>(size ? size : path.size() * 2 + 2));
}

// said gives the messages, each behind the function that it was traced in.
std::wstring said(traceRecorder_t& trace)
{
    std::wstring all;
    for (const traceRecord_t& record : trace.all()) {
        if (record.level == 'U' || record.level == 'E')
            all +=
                std::wstring(record.function.begin(), record.function.end()) + L"|" + record.text;
    }
    return all;
}

// inOwnProcess runs a case where nothing has been loaded and no key is there.
void inOwnProcess(const std::function<void()>& run)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto child = [&run] {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Host");
        run();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
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
        inOwnProcess([&c] {
            SetEnvironmentVariableW(L"D", brandingDll.c_str());
            setPath(defaultKey, c.value, c.type, c.size);
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(said(trace), L"CBranding::LoadResourceDLL|" + c.line);
            EXPECT_EQ(GetProductName(), L"");
            EXPECT_EQ(CBranding::DllPath(), L"");
            EXPECT_EQ(said(trace), L"CBranding::LoadResourceDLL|" + c.line);
            setPath(defaultKey, brandingDll);
            EXPECT_EQ(GetProductName(), L"Veltrano Personal Security");
            EXPECT_EQ(CBranding::DllPath(), brandingDll);
            setPath(defaultKey, L"C:\\other.dll"); // not looked at again
            EXPECT_EQ(CBranding::DllPath(), brandingDll);
            EXPECT_EQ(said(trace), L""); // success leaves no trace
        });
    }
}

TEST(BrandingDeathTest, TheHostsStringNamesTheKey)
{
    const struct {
        std::wstring host;  // string 900
        const wchar_t* set; // the key that has the value; null for none
    } cases[] = {
        {L"SOFTWARE\\Host", L"SOFTWARE\\Host"},
        {L"SOFTWARE\\Host", defaultKey},
        {L"SOFTWARE\\H\u00f6st \u5bc6", nullptr}, // the line names it, whatever its characters
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        inOwnProcess([&c] {
            const importPatch_t patch("LoadStringW", hostLoadString);
            loadString = importOriginal<decltype(&LoadStringW)>(patch);
            hostKey = c.host;
            if (c.set)
                setPath(c.set, brandingDll);
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL() != nullptr, c.set != nullptr);
            EXPECT_EQ(said(trace).find(c.host) != std::wstring::npos, !c.set);
        });
    }
}
