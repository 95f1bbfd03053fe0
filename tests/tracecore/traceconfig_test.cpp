#include "tracefixture.h"

#include "tracecore/tracefilename.h"
#include "common/module.h"
#include "common/text.h"

#include <ctime>
#include <functional>
#include <vector>

using namespace tracecore;

namespace {

DWORD daysFromNow(int days)
{
    return static_cast<DWORD>(std::time(nullptr) + days * int64_t{86400});
}

class TraceConfig : public tracingFixture
{
protected:
    static void list(const wchar_t* subkey, const std::wstring& name)
    {
        setValue(std::wstring(L"Tracing\\") + subkey, name.c_str(), REG_SZ, L"", 2);
    }

    // Counts the keys that are opened, and refuses those asked for with one access.
    static importPatch_t watchKeys()
    {
        reads = 0;
        refused = 0;
        openKey = RegOpenKeyExW;
        return fake(
            "RegOpenKeyExW",
            +[](HKEY root, const wchar_t* name, DWORD options, REGSAM access,
                HKEY* key) -> LSTATUS {
                ++reads;
                return access == refused ? ERROR_ACCESS_DENIED
                                         : openKey(root, name, options, access, key);
            });
    }

    static inline int reads;
    static inline REGSAM refused;
    static inline decltype(&RegOpenKeyExW) openKey;
    const std::wstring component = baseNameOf(moduleFileName(nullptr));
};

TEST_F(TraceConfig, WantedSinkByTheRegistry)
{
    static bool debugged;
    const importPatch_t debugger = fake(
        "IsDebuggerPresent", +[]() -> BOOL { return debugged; });
    std::wstring upper = component;
    CharUpperW(upper.data());
    const std::wstring longName(300, L'c');
    const struct {
        const char* what;
        std::function<void()> configure;
        uint32_t mode;
    } cases[] = {
        {"no key", [] {}, sinkNowhere},
        {"off", [] { setNumber(L"DoTrace", 0); }, sinkNowhere},
        {"wrong type", [] { setValue(L"Tracing", L"DoTrace", REG_SZ, L"1", 4); }, sinkNowhere},
        {"wrong size", [] { setValue(L"Tracing", L"DoTrace", REG_QWORD, L"\1\0\0", 8); },
         sinkNowhere},
        {"tomorrow", [] { setNumber(L"DoTrace", daysFromNow(1)); }, sinkFileNew},
        {"today", [] { setNumber(L"DoTrace", daysFromNow(0)); }, sinkNowhere},
        {"long past", [] { setNumber(L"DoTrace", 2); }, sinkNowhere},
        {"more than 2^31 seconds ahead", [] { setNumber(L"DoTrace", 0xFFFFFFFF); }, sinkNowhere},
        {"on", [] { setNumber(L"DoTrace", 1); }, sinkFileNew},
        {"appending", [] { setNumber(L"NewFileAlways", 0); }, sinkFileAppend},
        {"no output", [] { setNumber(L"TraceToFile", 2); }, sinkNowhere},
        {"console", [] { setNumber(L"TraceToFile", 3); }, sinkConsole},
        {"no debugger", [] { setNumber(L"TraceToFile", 4); }, sinkConsole},
        {"debugger's answer is kept", [] { debugged = true; }, sinkConsole},
        {"debugger", [] { debuggerPresent = -1; }, sinkIDE},
        {"another excluded", [&] { list(L"ComponentsNOT", L"Other" + component); }, sinkIDE},
        {"name too long", [&] { list(L"ComponentsNOT", longName); }, sinkIDE},
        {"excluded", [&] { list(L"ComponentsNOT", upper); }, sinkNowhere},
        {"others let through", [] { list(L"Components", L"Other"); }, sinkNowhere},
        {"let through", [&] { list(L"Components", component); }, sinkIDE},
        {"only let through",
         [] {
             RegDeleteTreeW(HKEY_LOCAL_MACHINE,
                            (std::wstring(tracingKey) + L"\\ComponentsNOT").c_str());
         },
         sinkIDE},
    };
    debugged = false;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        c.configure();
        EXPECT_EQ(theTracer().traceMode(), c.mode);
    }
}

TEST_F(TraceConfig, RegistryIsReadOnceInThirtySecondsAndFollowedAtTheNextEntry)
{
    const importPatch_t patch = watchKeys();
    follow();
    EXPECT_GT(reads, 0);
    reads = 0;
    setNumber(L"DoTrace", 1);
    testTicks += 30000;
    traceEnter("early");
    traceLeave();
    EXPECT_EQ(reads, 0);
    EXPECT_FALSE(traceActive());
    ++testTicks;
    SetLastError(1234);
    traceEnter("due");
    EXPECT_EQ(GetLastError(), 1234u);
    traceLeave();
    EXPECT_TRUE(traceActive());
    EXPECT_EQ(sinkKind, sinkFileNew);
}

TEST_F(TraceConfig, ExpiredSwitchIsDeletedOnlyIfItIsANumber)
{
    const importPatch_t patch = watchKeys();
    EXPECT_FALSE(theTracer().expire());
    setValue(L"Tracing", L"DoTrace", REG_SZ, L"1", 4);
    EXPECT_TRUE(switchExpired());
    EXPECT_FALSE(theTracer().expire());
    EXPECT_TRUE(hasSwitch());

    setNumber(L"DoTrace", daysFromNow(1));
    follow();
    EXPECT_TRUE(hasSwitch());
    setNumber(L"DoTrace", daysFromNow(-1));
    refused = KEY_WRITE;
    EXPECT_TRUE(theTracer().expire());
    EXPECT_TRUE(hasSwitch());
    refused = 0;
    follow();
    EXPECT_FALSE(hasSwitch());
    EXPECT_FALSE(traceActive());
}

TEST_F(TraceConfig, SweepLooksOnceAtTheTracesAndMarksNone)
{
    static std::vector<std::wstring> patterns;
    static decltype(&FindFirstFileW) original;
    patterns.clear();
    const importPatch_t find = fake(
        "FindFirstFileW", +[](const wchar_t* pattern, WIN32_FIND_DATAW* found) -> HANDLE {
            patterns.emplace_back(pattern);
            return original(pattern, found);
        });
    original = importOriginal<decltype(original)>(find);
    static bool marked;
    marked = false;
    const importPatch_t move = fake(
        "MoveFileExW",
        +[](const wchar_t*, const wchar_t*, DWORD) -> BOOL { return marked = true; });
    std::ofstream(folder / "old.trc3") << "x";
    setText(L"FileName", (folder / "new.trc3").wstring());

    {
        const importPatch_t busy = fake(
            "WaitForSingleObject", +[](HANDLE, DWORD) -> DWORD { return WAIT_TIMEOUT; });
        setNumber(L"DoTrace", 2);
        follow();
        EXPECT_TRUE(patterns.empty()); // another process is at it
    }
    for (int i = 0; i < 2; ++i) {
        setNumber(L"DoTrace", 0); // a number that is not 1
        follow();
    }
    EXPECT_EQ(patterns, std::vector<std::wstring>{(folder / "*.trc3").wstring()});
    EXPECT_TRUE(find.found() && move.found() && !marked);
    EXPECT_TRUE(std::filesystem::exists(folder / "old.trc3"));
}

TEST_F(TraceConfig, FileNameTakesTheFolderFromTheEnvironmentTracePathLowFirst)
{
    SetEnvironmentVariableW(L"VL_TRACES", folder.c_str());
    setText(L"TracePath", L"%VL_TRACES%\\b/");
    setNumber(L"noTimestamp", 1);
    std::wstring name;
    theTracer().fileName(name, false);
    EXPECT_EQ(name.rfind((folder / "b\\").wstring() + component + L".x64.", 0), 0u)
        << utf8FromWide(name);
    setText(L"TracePathLow", L"%VL_TRACES%\\a");
    theTracer().fileName(name, false);
    EXPECT_EQ(name.rfind((folder / "a\\").wstring(), 0), 0u);
    EXPECT_EQ(name.find(L"~~"), std::wstring::npos);
    theTracer().fileName(name, true);
    EXPECT_NE(name.find(L"~~"), std::wstring::npos);
    SetEnvironmentVariableW(L"VL_TRACES", nullptr);
}

} // namespace
