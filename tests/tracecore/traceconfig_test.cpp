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
    const std::wstring tracing = L"Tracing", letThrough = L"Tracing\\Components";
    const std::wstring excluded = L"Tracing\\ComponentsNOT";
    EXPECT_EQ(theTracer().traceMode(), sinkNowhere); // no key
    const struct {                                   // each row adds a value
        const std::wstring key, name;
        DWORD type, value;
        uint32_t mode;
    } cases[] = {
        {tracing, L"DoTrace", REG_BINARY, 1, sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(1), sinkFileNew},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(0), sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, 2, sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, 0xFFFFFFFF, sinkNowhere}, // more than 2^31 seconds ahead
        {tracing, L"DoTrace", REG_DWORD, 1, sinkFileNew},
        {tracing, L"NewFileAlways", REG_DWORD, 0, sinkFileAppend},
        {tracing, L"TraceToFile", REG_DWORD, 2, sinkNowhere},
        {tracing, L"TraceToFile", REG_DWORD, 4, sinkConsole},
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
    static std::wstring calls;
    calls.clear();
    const importPatch_t find = fake(
        "FindFirstFileW", +[](const wchar_t* pattern, WIN32_FIND_DATAW* found) -> HANDLE {
            calls += pattern;
            return FindFirstFileExW(pattern, FindExInfoStandard, found, FindExSearchNameMatch,
                                    nullptr, 0);
        });
    const importPatch_t move = fake(
        "MoveFileExW",
        +[](const wchar_t*, const wchar_t*, DWORD) -> BOOL { return calls += L"marked", TRUE; });
    setText(L"FileName", (folder / "new.trc3").wstring());
    std::ofstream(folder / "old.trc3") << "x";
    for (int time = 0; time < 2; ++time) {
        setNumber(L"DoTrace", 0); // a number that is not 1
        follow();
    }
    EXPECT_EQ(calls, (folder / "*.trc3").wstring());
    EXPECT_TRUE(find.found() && move.found());
}

TEST_F(TraceConfig, FileNameTakesTheFolderFromTheEnvironmentTracePathLowFirst)
{
    SetEnvironmentVariableW(L"VL_TRACES", folder.c_str());
    const std::wstring tail = component + L".x64.";
    std::wstring name;
    setNumber(L"noTimestamp", 1);
    for (const auto& [value, at] : {std::pair(L"TracePath", L"b"), {L"TracePathLow", L"a"}}) {
        setText(value, std::wstring(L"%VL_TRACES%\\") + at);
        theTracer().fileName(name, false);
        EXPECT_EQ(name.rfind((folder / at / tail).wstring(), 0), 0u);
        EXPECT_EQ(name.find(L"~~"), std::wstring::npos);
    }
}

} // namespace
