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

std::wstring hostKey; // string 900 of the program
decltype(&LoadStringW) loadString;
decltype(&LoadLibraryExW) loadLibraryEx;
std::atomic<int> loads;
std::atomic<int> frees;

int WINAPI hostLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_HOST_BRANDING_KEY || module != GetModuleHandleW(nullptr))
        return loadString(module, id, buffer, size);
    hostKey.copy(buffer, hostKey.size());
    return static_cast<int>(hostKey.size());
}

HMODULE WINAPI countingLoad(LPCWSTR name, HANDLE file, DWORD flags)
{
    ++loads;
    while (loads < 2) // until the other thread is here too
        SwitchToThread();
    return loadLibraryEx(name, file, flags);
}

BOOL WINAPI countingFree(HMODULE)
{
    return ++frees;
}

const std::wstring& brandingDll()
{
    static const std::wstring path = builtFile(L"Branding.dll").wstring();
    return path;
}

void setValue(const wchar_t* key, DWORD type, const std::wstring& value, size_t size)
{
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, L"DLLPath", type, value.c_str(),
                              static_cast<DWORD>(size)),
              0);
}

void setPath(const wchar_t* key, const std::wstring& path)
{
    setValue(key, REG_SZ, path, path.size() * 2 + 2);
}

// records gives all records: the names of frames, the texts of messages.
std::vector<std::wstring> records(traceRecorder_t& trace)
{
    std::vector<std::wstring> all;
    for (const traceRecord_t& record : trace.all()) {
        const bool frame = record.level == '>' || record.level == '<';
        const std::wstring function(record.function.begin(), record.function.end());
        if (!frame || function != L"main") // written once, by the first message of the process
            all.push_back(static_cast<wchar_t>(record.level) +
                          (L' ' + (frame ? function : record.text)));
    }
    return all;
}

std::vector<std::wstring> framed(const std::wstring& line)
{
    return {L"> CBranding::LoadResourceDLL", L"U " + line, L"< CBranding::LoadResourceDLL"};
}

class BrandingDeathTest : public testing::Test
{
protected:
    BrandingDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }

    // own runs a case in a process of its own, where nothing has been loaded and no key is there.
    static void own(const std::function<void()>& run)
    {
        const auto child = [&run] {
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding");
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Host");
            run();
            std::exit(HasFailure() ? 1 : 0);
        };
        EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
    }
};

} // namespace

TEST_F(BrandingDeathTest, EachFailureLeavesItsLineAndTheNextNeedTriesAgain)
{
    const std::wstring noKey =
        L"Open Branding key SOFTWARE\\Veltrano\\Branding\\Common in registry Failed";
    const std::wstring noPath = L"Failed to find DllPath under Branding key in registry";
    const std::wstring notLoaded = L"failed to load resource dll , GetLastError returned 0x000000";
    const std::wstring& dll = brandingDll();
    const size_t whole = dll.size() * 2 + 2;
    const struct {
        const char* what;
        DWORD type; // of the value; 0 makes none
        std::wstring value;
        size_t size;
        std::wstring line;
    } cases[] = {
        {"no key", 0, L"", 0, noKey},
        {"number", REG_DWORD, L"ab", 4, noPath},
        {"bytes", REG_BINARY, dll, whole, noPath},
        {"odd length", REG_SZ, dll, whole - 1, noPath},
        {"odd length, zero behind", REG_SZ, dll, whole + 1, noPath},
        {"not terminated", REG_SZ, L"abX", 4, noPath},
        {"longer than 520 bytes", REG_SZ, std::wstring(260, L'x'), 522, noPath},
        {"520 bytes fit", REG_SZ, L"C:\\" + std::wstring(256, L'x'), 520, notLoaded + L"02"},
        {"no bytes at all", REG_SZ, L"", 0, notLoaded + L"57"},
        {"missing file", REG_SZ, L"C:\\none.dll", 24, notLoaded + L"02"},
        {"variables stay", REG_EXPAND_SZ, L"%D%", 8, notLoaded + L"02"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        own([&c] {
            SetEnvironmentVariableW(L"D", brandingDll().c_str());
            if (c.type)
                setValue(defaultKey, c.type, c.value, c.size);
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(CBranding::DllPath(), L"");
            EXPECT_EQ(records(trace), framed(c.line));
            EXPECT_EQ(GetProductName(), L"");
            EXPECT_EQ(records(trace), framed(c.line));

            setPath(defaultKey, brandingDll());
            EXPECT_EQ(GetProductName(), L"Veltrano Personal Security");
            EXPECT_EQ(CBranding::DllPath(), brandingDll());
            EXPECT_TRUE(records(trace).empty()); // success leaves no trace
        });
    }
}

TEST_F(BrandingDeathTest, LoadsOnceForStringsWithAMarkerAlone)
{
    own([] {
        const installation_t installation;
        const CLoadedModule language(
            LoadLibraryExW(installation.install(L"en-US", L"en-US").c_str(), nullptr, 2));
        SetResourceModule(language.get());
        traceRecorder_t trace;
        EXPECT_EQ(GetBrandedString(1026), L"Password Manager status");
        EXPECT_EQ(GetBrandedString(9999), L"");
        EXPECT_TRUE(records(trace).empty()); // no key, and nobody looked for it
        EXPECT_EQ(GetBrandedString(1041), L" Password Manager");
        setPath(defaultKey, brandingDll());
        EXPECT_EQ(GetBrandedString(1041), L"Veltrano Personal Security Password Manager");
        const HMODULE loaded = CBranding::LoadResourceDLL();
        EXPECT_TRUE(FindResourceW(loaded, MAKEINTRESOURCEW(IDI_PRODUCT), MAKEINTRESOURCEW(14)));
        setPath(defaultKey, L"C:\\other.dll");
        EXPECT_EQ(CBranding::LoadResourceDLL(), loaded);
        EXPECT_EQ(CBranding::DllPath(), brandingDll());
    });
}

TEST_F(BrandingDeathTest, TheHostsStringNamesTheKey)
{
    const struct {
        std::wstring host;  // string 900
        const wchar_t* set; // the key that has the value; null for none
        std::wstring line;
    } cases[] = {
        {L"SOFTWARE\\Host", L"SOFTWARE\\Host", L""},
        {L"SOFTWARE\\Host", defaultKey, L""},
        {L"", defaultKey, L""},
        {L"SOFTWARE\\H\u00f6st \u5bc6", nullptr, // the line names it, whatever its characters
         L"Open Branding key SOFTWARE\\H\u00f6st \u5bc6 in registry Failed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        own([&c] {
            const importPatch_t patch(GetModuleHandleW(nullptr), "LoadStringW",
                                      reinterpret_cast<void*>(&hostLoadString));
            loadString = importOriginal<decltype(&LoadStringW)>(patch);
            hostKey = c.host;
            if (c.set)
                setPath(c.set, brandingDll());
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL() != nullptr, c.set != nullptr);
            EXPECT_EQ(records(trace), c.set ? std::vector<std::wstring>() : framed(c.line));
        });
    }
}

TEST_F(BrandingDeathTest, TheLoserOfARaceFreesItsOwn)
{
    own([] {
        setPath(defaultKey, brandingDll());
        const HMODULE self = GetModuleHandleW(nullptr);
        const importPatch_t load(self, "LoadLibraryExW", reinterpret_cast<void*>(&countingLoad));
        const importPatch_t free(self, "FreeLibrary", reinterpret_cast<void*>(&countingFree));
        loadLibraryEx = importOriginal<decltype(&LoadLibraryExW)>(load);
        HMODULE results[2] = {};
        std::thread other([&results] { results[1] = CBranding::LoadResourceDLL(); });
        results[0] = CBranding::LoadResourceDLL();
        other.join();
        EXPECT_NE(results[0], nullptr);
        EXPECT_EQ(results[0], results[1]);
        EXPECT_EQ(loads, 2);
        EXPECT_EQ(frees, 1);
    });
}
