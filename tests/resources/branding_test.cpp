#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "resources/strings.h"
#include "installation.h"
#include "support/tracerecorder.h"

#include <functional>
#include <thread>

#include <gtest/gtest.h>

// The branding DLL is loaded once in a process and stays. So each of these cases has a process of
// its own.

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";

std::wstring hostKey; // string 900 of the program
int found900 = 0;     // how often it was asked for
decltype(&LoadStringW) loadString;
decltype(&LoadLibraryExW) loadLibraryEx;
std::atomic<int> loads;
std::atomic<int> frees;

int WINAPI hostLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_HOST_BRANDING_KEY || module != GetModuleHandleW(nullptr))
        return loadString(module, id, buffer, size);
    ++found900;
    hostKey.copy(buffer, hostKey.size());
    return static_cast<int>(hostKey.size());
}

void setValue(const wchar_t* key, DWORD type, const std::wstring& value, size_t size)
{
    CRegistryKey opened;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                              opened.put(), nullptr),
              0);
    ASSERT_EQ(RegSetValueExW(opened.get(), L"DLLPath", 0, type,
                             reinterpret_cast<const BYTE*>(value.c_str()),
                             static_cast<DWORD>(size)),
              0);
}

void setPath(const wchar_t* key, const std::wstring& path)
{
    setValue(key, REG_SZ, path, path.size() * 2 + 2);
}

std::wstring brandingDll()
{
    return builtFile(L"Branding.dll").wstring();
}

std::vector<std::wstring> framed(const std::wstring& line)
{
    return {L"> CBranding::LoadResourceDLL", L"U " + line, L"< CBranding::LoadResourceDLL"};
}

// records gives the records of all levels as one text each; the frame's name stands in the text or
// beside it.
std::vector<std::wstring> records(traceRecorder_t& trace)
{
    std::vector<std::wstring> all;
    for (const traceRecord_t& record : trace.all()) {
        const std::wstring function(record.function.begin(), record.function.end());
        const bool frame = record.level == '>' || record.level == '<';
        if (frame && function == L"main")
            continue; // written once, by the first message of the process
        all.push_back(std::wstring(1, static_cast<wchar_t>(record.level)) + L" " +
                      (frame ? function : record.text));
    }
    return all;
}

// own runs a case in a process of its own, where nothing has been loaded and the key is empty.
void own(const std::function<void()>& run)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding");
    run();
    std::exit(testing::Test::HasFailure() ? 1 : 0);
}

class BrandingDeathTest : public testing::Test
{
protected:
    BrandingDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

#define IN_OWN_PROCESS(...) EXPECT_EXIT(own(__VA_ARGS__), testing::ExitedWithCode(0), "")

struct failure_t {
    const char* what;
    std::function<void()> prepare;
    std::wstring line;
};

std::vector<failure_t> failures()
{
    const std::wstring noKey =
        L"Open Branding key SOFTWARE\\Veltrano\\Branding\\Common in registry Failed";
    const std::wstring noPath = L"Failed to find DllPath under Branding key in registry";
    const auto notLoaded = [](const wchar_t* error) {
        return L"failed to load resource dll , GetLastError returned 0x" + std::wstring(error);
    };
    const auto value = [](DWORD type, const std::wstring& text, size_t size) {
        return [=] { setValue(defaultKey, type, text, size); };
    };
    const std::wstring dll = brandingDll();
    const size_t whole = dll.size() * 2 + 2;
    return {
        {"no key", [] {}, noKey},
        {"no value",
         [] {
             CRegistryKey key;
             RegCreateKeyW(HKEY_LOCAL_MACHINE, defaultKey, key.put());
         },
         noPath},
        {"number", value(REG_DWORD, L"ab", 4), noPath},
        {"bytes", value(REG_BINARY, dll, whole), noPath},
        {"odd length", value(REG_SZ, dll, whole - 1), noPath},
        {"odd length, zero behind", value(REG_SZ, dll, whole + 1), noPath},
        {"not terminated", value(REG_SZ, L"abX", 4), noPath},
        {"longer than 520 bytes", value(REG_SZ, std::wstring(260, L'x'), 522), noPath},
        {"empty text", value(REG_SZ, L"", 2), notLoaded(L"00000057")},
        {"no bytes at all", value(REG_SZ, L"", 0), notLoaded(L"00000057")},
        {"missing file", value(REG_SZ, L"C:\\none.dll", 24), notLoaded(L"00000002")},
        {"520 bytes fit", value(REG_SZ, L"C:\\" + std::wstring(256, L'x'), 520),
         notLoaded(L"00000002")},
        {"variables stay", value(REG_EXPAND_SZ, L"%D%", 8), notLoaded(L"00000002")},
    };
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
    ++frees;
    return TRUE;
}

} // namespace

TEST_F(BrandingDeathTest, EachFailureLeavesItsLineAndNothingLoaded)
{
    for (const failure_t& row : failures()) {
        SCOPED_TRACE(row.what);
        IN_OWN_PROCESS([&row] {
            SetEnvironmentVariableW(L"D", brandingDll().c_str());
            row.prepare();
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(records(trace), framed(row.line));
            EXPECT_EQ(CBranding::DllPath(), L"");
            EXPECT_EQ(GetProductName(), L"");
            EXPECT_EQ(records(trace), framed(row.line)); // the name asks anew

            setPath(defaultKey, brandingDll());
            EXPECT_NE(CBranding::LoadResourceDLL(), nullptr);
            EXPECT_EQ(CBranding::DllPath(), brandingDll());
            EXPECT_EQ(GetProductName(), L"Veltrano Personal Security");
            EXPECT_TRUE(records(trace).empty()); // success leaves no trace
        });
    }
}

TEST_F(BrandingDeathTest, LoadsOnceForStringsWithAMarkerAlone)
{
    IN_OWN_PROCESS([] {
        installation_t installation;
        const CLoadedModule language(LoadLibraryExW(
            installation.install(L"en-US", L"en-US").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        SetResourceModule(language.get());
        traceRecorder_t trace;
        EXPECT_EQ(GetBrandedString(1026), L"Password Manager status");
        EXPECT_TRUE(records(trace).empty()); // no key, and nobody looked for it
        EXPECT_EQ(GetBrandedString(1041), L" Password Manager");
        EXPECT_EQ(records(trace).size(), 3u);

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
        const char* what;
        std::wstring host;  // string 900
        const wchar_t* set; // the key that has the value; null for none
        std::wstring line;
    } cases[] = {
        {"its key", L"SOFTWARE\\Host", L"SOFTWARE\\Host", L""},
        {"its key is missing: the default", L"SOFTWARE\\Host", defaultKey, L""},
        {"both are missing: its key is named", L"SOFTWARE\\H\u00f6st \u5bc6", nullptr,
         L"Open Branding key SOFTWARE\\H\u00f6st \u5bc6 in registry Failed"},
        {"no string: the default", L"", defaultKey, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        IN_OWN_PROCESS([&c] {
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Host");
            const importPatch_t patch(GetModuleHandleW(nullptr), "LoadStringW",
                                      reinterpret_cast<void*>(&hostLoadString));
            loadString = importOriginal<decltype(&LoadStringW)>(patch);
            hostKey = c.host;
            if (c.set)
                setPath(c.set, brandingDll());
            traceRecorder_t trace;
            EXPECT_EQ(CBranding::LoadResourceDLL() != nullptr, c.set != nullptr);
            EXPECT_EQ(records(trace), c.set ? std::vector<std::wstring>() : framed(c.line));
            EXPECT_EQ(found900, 1);
        });
    }
}

TEST_F(BrandingDeathTest, TheLoserOfARaceFreesItsOwn)
{
    IN_OWN_PROCESS([] {
        setPath(defaultKey, brandingDll());
        const HMODULE self = GetModuleHandleW(nullptr);
        const importPatch_t load(self, "LoadLibraryExW", reinterpret_cast<void*>(&countingLoad));
        const importPatch_t free(self, "FreeLibrary", reinterpret_cast<void*>(&countingFree));
        ASSERT_TRUE(load.found() && free.found());
        loadLibraryEx = importOriginal<decltype(&LoadLibraryExW)>(load);
        HMODULE results[2] = {};
        std::thread other([&results] { results[1] = CBranding::LoadResourceDLL(); });
        results[0] = CBranding::LoadResourceDLL();
        other.join();
        EXPECT_NE(results[0], nullptr);
        EXPECT_EQ(results[0], results[1]);
        EXPECT_EQ(frees, 1);
    });
}
