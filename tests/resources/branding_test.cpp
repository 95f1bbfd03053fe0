#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "resources/strings.h"
#include "installation.h"
#include "support/tracerecorder.h"

#include <functional>
#include <thread>

// The branding DLL is loaded once in a process and stays. So each of these cases has a process of its own.

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
const std::wstring brandingDll = builtFile(L"Branding.dll").wstring();
const HMODULE self = GetModuleHandleW(nullptr);

std::wstring hostKey; // string 900 of the program
decltype(&LoadStringW) loadString;
decltype(&LoadLibraryExW) loadLibraryEx;
std::atomic<int> loads;
std::atomic<int> frees;

int WINAPI hostLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_HOST_BRANDING_KEY || module != self)
        return loadString(module, id, buffer, size);
    return static_cast<int>(hostKey.copy(buffer, hostKey.size()));
}

HMODULE WINAPI countingLoad(LPCWSTR name, HANDLE file, DWORD flags)
{
    for (++loads; loads < 2;) // until the other thread is here too
        SwitchToThread();
    return loadLibraryEx(name, file, flags);
}

BOOL WINAPI countingFree(HMODULE)
{
    return ++frees;
}

void setPath(const wchar_t* key, const std::wstring& path, DWORD type, size_t size)
{
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, L"DLLPath", type, path.c_str(),
                    static_cast<DWORD>(size));
}

void setPath(const wchar_t* key, const std::wstring& path)
{
    setPath(key, path, REG_SZ, path.size() * 2 + 2);
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
    const std::wstring noKey =
        std::wstring(L"Open Branding key ") + defaultKey + L" in registry Failed";
    const std::wstring noPath = L"Failed to find DllPath under Branding key in registry";
    const std::wstring notLoaded = L"failed to load resource dll , GetLastError returned 0x000000";
    const size_t whole = brandingDll.size() * 2 + 2;
    const struct {
        const char* what;
        DWORD type; // of the value; 0 makes none
        std::wstring value;
        size_t size;
        std::wstring line;
    } cases[] = {
        {"no key", 0, L"", 0, noKey},
        {"bytes", REG_BINARY, brandingDll, whole, noPath},
        {"odd length, zero behind", REG_SZ, brandingDll, whole + 1, noPath},
        {"not terminated", REG_SZ, L"abX", 4, noPath},
        {"longer than 520 bytes", REG_SZ, std::wstring(260, L'x'), 522, noPath},
        {"520 bytes fit", REG_SZ, L"C:\\" + std::wstring(256, L'x'), 520, notLoaded + L"02"},
        {"no bytes at all", REG_SZ, L"", 0, notLoaded + L"57"},
        {"variables stay", REG_EXPAND_SZ, L"%D%", 8, notLoaded + L"02"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        inOwnProcess([&c] {
            SetEnvironmentVariableW(L"D", brandingDll.c_str());
            if (c.type)
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
            EXPECT_EQ(said(trace), L""); // success leaves no trace
        });
    }
}

TEST(BrandingDeathTest, LoadsOnceForStringsWithAMarkerAlone)
{
    inOwnProcess([] {
        const installation_t installation;
        const CLoadedModule language = loadAsData(installation.install(L"en-US", L"en-US"));
        SetResourceModule(language.get());
        traceRecorder_t trace;
        EXPECT_EQ(GetBrandedString(1026), L"Password Manager status");
        EXPECT_EQ(GetBrandedString(9999), L"");
        EXPECT_EQ(said(trace), L""); // no key, and nobody looked for it
        EXPECT_EQ(GetBrandedString(1041), L" Password Manager");
        setPath(defaultKey, brandingDll);
        EXPECT_EQ(GetBrandedString(1041), L"Veltrano Personal Security Password Manager");
        const HMODULE loaded = CBranding::LoadResourceDLL();
        EXPECT_TRUE(FindResourceW(loaded, MAKEINTRESOURCEW(IDI_PRODUCT), MAKEINTRESOURCEW(14)));
        setPath(defaultKey, L"C:\\other.dll");
        EXPECT_EQ(CBranding::LoadResourceDLL(), loaded);
        EXPECT_EQ(CBranding::DllPath(), brandingDll);
    });
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
            const importPatch_t patch(self, "LoadStringW",
                                      reinterpret_cast<void*>(&hostLoadString));
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

TEST(BrandingDeathTest, TheLoserOfARaceFreesItsOwn)
{
    inOwnProcess([] {
        setPath(defaultKey, brandingDll);
        const importPatch_t load(self, "LoadLibraryExW", reinterpret_cast<void*>(&countingLoad));
        const importPatch_t free(self, "FreeLibrary", reinterpret_cast<void*>(&countingFree));
        loadLibraryEx = importOriginal<decltype(&LoadLibraryExW)>(load);
        HMODULE other = nullptr;
        std::thread thread([&other] { other = CBranding::LoadResourceDLL(); });
        const HMODULE own = CBranding::LoadResourceDLL();
        thread.join();
        EXPECT_EQ(own, other);
        EXPECT_EQ(frees, 1);
    });
}
