#include "tracefixture.h"

#include "common/module.h"
#include "tracecore/tracefilename.h"

#include <ctime>

using namespace tracecore;

namespace {

DWORD daysFromNow(int days)
{
    return static_cast<DWORD>(std::time(nullptr) + days * int64_t{86400});
}

class TraceConfig : public tracingFixture
{
protected:
    static bool hasSwitch()
    {
        return !RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", L"DoTrace",
                             RRF_RT_ANY, nullptr, nullptr, nullptr);
    }

    const std::wstring component = baseNameOf(moduleFileName(nullptr));
};

TEST_F(TraceConfig, WantedSinkByTheRegistry)
{
    static bool debugged;
    const importPatch_t debugger = fake(
        "IsDebuggerPresent", +[]() -> BOOL { return debugged; });
    std::wstring upper = component;
    CharUpperW(upper.data());
    const std::wstring tracing = L"Tracing";
    const std::wstring excluded = L"Tracing\\ComponentsNOT";
    const std::wstring letThrough = L"Tracing\\Components";
    EXPECT_EQ(theTracer().traceMode(), sinkNowhere); // no key
    const struct {                                   // each row adds a value
        const std::wstring key, name;
        DWORD type, value;
        uint32_t mode;
    } cases[] = {
        {tracing, L"DoTrace", REG_DWORD, 0, sinkNowhere},
        {tracing, L"DoTrace", REG_BINARY, 1, sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(1), sinkFileNew},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(0), sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, 2, sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, 0xFFFFFFFF, sinkNowhere}, // more than 2^31 seconds ahead
        {tracing, L"DoTrace", REG_DWORD, 1, sinkFileNew},
        {tracing, L"NewFileAlways", REG_DWORD, 0, sinkFileAppend},
        {tracing, L"TraceToFile", REG_DWORD, 2, sinkNowhere},
        {tracing, L"TraceToFile", REG_DWORD, 3, sinkConsole},
        {tracing, L"TraceToFile", REG_DWORD, 4, sinkConsole},
        {letThrough, L"Other", REG_DWORD, 0, sinkConsole},
        {excluded, L"Other" + component, REG_DWORD, 0, sinkConsole},
        {excluded, std::wstring(300, L'c'), REG_DWORD, 0, sinkConsole},
        {excluded, upper, REG_DWORD, 0, sinkNowhere},
        {letThrough, component, REG_DWORD, 0, sinkConsole},
    };
    debugged = false;
    for (const auto& c : cases) {
        setValue(c.name.c_str(), c.type, &c.value, 4, c.key);
        EXPECT_EQ(theTracer().traceMode(), c.mode) << "row " << &c - cases;
    }
    debugged = true;
    EXPECT_EQ(theTracer().traceMode(), sinkConsole); // the answer is kept
    debuggerPresent = -1;
    EXPECT_EQ(theTracer().traceMode(), sinkIDE);
}

TEST_F(TraceConfig, RegistryIsReadOnceInThirtySecondsAndFollowedAtTheNextEntry)
{
    follow();
    setNumber(L"DoTrace", 1);
    for (const DWORD passing : {30000U, 1U}) {
        EXPECT_FALSE(traceActive());
        testTicks += passing;
        SetLastError(1234);
        const traceScope_t scope("f");
        EXPECT_EQ(GetLastError(), 1234u);
    }
    EXPECT_TRUE(traceActive());
}

TEST_F(TraceConfig, ExpiredSwitchIsDeletedOnlyIfItIsANumber)
{
    EXPECT_FALSE(theTracer().expire());
    setText(L"DoTrace", L"1");
    EXPECT_TRUE(switchExpired());
    EXPECT_FALSE(theTracer().expire());
    EXPECT_TRUE(hasSwitch());
    setNumber(L"DoTrace", daysFromNow(1));
    follow();
    EXPECT_TRUE(traceActive() && hasSwitch());
    setNumber(L"DoTrace", daysFromNow(-1));
    follow();
    EXPECT_FALSE(traceActive() || hasSwitch());
}

TEST_F(TraceConfig, SweepLooksOnceAtTheTracesAndMarksNone)
{
    static std::vector<std::wstring> calls;
    static decltype(&FindFirstFileW) original;
    calls.clear();
    const importPatch_t find = fake(
        "FindFirstFileW", +[](const wchar_t* pattern, WIN32_FIND_DATAW* found) -> HANDLE {
            calls.emplace_back(pattern);
            return original(pattern, found);
        });
    original = importOriginal<decltype(original)>(find);
    const importPatch_t move = fake(
        "MoveFileExW", +[](const wchar_t*, const wchar_t*, DWORD) -> BOOL {
            calls.emplace_back(L"marked");
            return TRUE;
        });
    setText(L"FileName", (folder / "new.trc3").wstring());
    std::ofstream(folder / "old.trc3") << "x";
    for (const bool busy : {true, false, false}) { // another process is at it, at first
        const importPatch_t wait =
            fake("WaitForSingleObject",
                 busy ? +[](HANDLE, DWORD) -> DWORD { return WAIT_TIMEOUT; } : WaitForSingleObject);
        setNumber(L"DoTrace", 0); // a number that is not 1
        follow();
        EXPECT_EQ(calls.empty(), busy);
    }
    EXPECT_EQ(calls, std::vector<std::wstring>{(folder / "*.trc3").wstring()});
    EXPECT_TRUE(find.found() && move.found());
}

TEST_F(TraceConfig, FileNameTakesTheFolderFromTheEnvironmentTracePathLowFirst)
{
    SetEnvironmentVariableW(L"VL_TRACES", folder.c_str());
    std::wstring name;
    const auto folderIs = [&](const char* expected) {
        theTracer().fileName(name, false);
        return name.rfind((folder / expected).wstring() + component + L".x64.", 0) == 0;
    };
    setText(L"TracePath", L"%VL_TRACES%\\b/");
    setNumber(L"noTimestamp", 1);
    EXPECT_TRUE(folderIs("b\\"));
    EXPECT_EQ(name.find(L"~~"), std::wstring::npos);
    setText(L"TracePathLow", L"%VL_TRACES%\\a");
    EXPECT_TRUE(folderIs("a\\"));
    theTracer().fileName(name, true);
    EXPECT_NE(name.find(L"~~"), std::wstring::npos);
}

} // namespace
