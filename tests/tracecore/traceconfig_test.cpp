#include "common/module.h"
#include "common/text.h"
#include "support/importhooks.h"
#include "tracecore/tracefilename.h"
#include "tracefixture.h"

#include <algorithm>
#include <ctime>
#include <thread>

using namespace tracecore;

static DWORD daysFromNow(int days)
{
    return static_cast<DWORD>(std::time(nullptr) + days * int64_t{86400});
}

using TraceConfig = tracingFixture;

const std::wstring component = baseNameOf(moduleFileName(nullptr));

TEST_F(TraceConfig, WantedSinkFollowsTheRegistry)
{
    static BOOL debugged;
    const importPatch_t debugger{"IsDebuggerPresent", +[] { return debugged; }};
    std::wstring upper = component;
    CharUpperW(upper.data());
    const wchar_t tracing[] = L"Tracing", excluded[] = L"Tracing\\ComponentsNOT";
    EXPECT_EQ(theTracer().traceMode(), sinkNowhere); // no key
    // Each row adds a value.
    const std::tuple<const wchar_t*, std::wstring, DWORD, DWORD, uint32_t> cases[] = {
        {tracing, L"DoTrace", REG_BINARY, 1, sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(1), sinkFileNew},
        {tracing, L"DoTrace", REG_DWORD, daysFromNow(0), sinkNowhere},
        {tracing, L"DoTrace", REG_DWORD, 0xFFFFFFFF, sinkNowhere}, // more than 2^31 seconds ahead
        {tracing, L"DoTrace", REG_DWORD, 1, sinkFileNew},
        {tracing, L"NewFileAlways", REG_DWORD, 0, sinkFileAppend},
        {tracing, L"TraceToFile", REG_DWORD, 2, sinkNowhere},
        {tracing, L"TraceToFile", REG_DWORD, 4, sinkConsole},
        {excluded, std::wstring(300, L'c'), REG_DWORD, 0, sinkConsole},
        {excluded, upper, REG_DWORD, 0, sinkNowhere},
        {L"Tracing\\Components", component, REG_DWORD, 0, sinkConsole},
    };
    debugged = FALSE;
    for (const auto& [key, name, type, value, mode] : cases) {
        setNumber(name.c_str(), value, key, type);
        EXPECT_EQ(theTracer().traceMode(), mode) << utf8FromWide(name) << value;
    }
    debugged = TRUE;
    EXPECT_EQ(theTracer().traceMode(), sinkConsole); // the answer is kept
    traceState().debuggerPresent = -1;
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

// Days are those of the local calendar: the same moment is today in one zone and tomorrow in another.
TEST_F(TraceConfig, DaysAreCountedByTheLocalCalendar)
{
    static __time64_t now;
    const importPatch_t today{"_time64", +[](__time64_t*) { return now; }};
    constexpr int64_t day = 86400, midnight = 17000 * day;
    for (const auto& [zone, offset] :
         {std::pair("TZ=UTC0", 0), {"TZ=AAA5", -5}, {"TZ=BBB-13", 13}}) {
        _putenv(zone);
        _tzset();
        const auto dayOf = [offset = offset](int64_t time) { return (time + offset * 3600) / day; };
        for (const int64_t hour : {0, 1, 5, 11, 12, 19, 23}) {
            for (const int64_t second : {-1, 0}) {
                now = midnight + hour * 3600 + second;
                for (int64_t time = midnight - 2 * day; time <= midnight + 4 * day; time += 1800) {
                    SCOPED_TRACE(zone + std::to_string(now) + ' ' + std::to_string(time));
                    EXPECT_EQ(daysUntil(time), std::max<int64_t>(0, dayOf(time) - dayOf(now)));
                }
            }
        }
    }
    _putenv("TZ=");
    _tzset();
}

TEST_F(TraceConfig, SweepWaitsForNobody)
{
    const wchar_t name[] = L"{32FA2EA5-DF93-459d-8F49-C1DC80404214}";
    const CKernelHandle turn(CreateMutexW(nullptr, TRUE, name));
    std::jthread([] { sweepOldTraces(L"x.trc3", 1); });
    EXPECT_EQ(traceState().sweepDone, 0); // a later look tries again
    ReleaseMutex(turn.get());
    std::jthread([] { sweepOldTraces(L"x.trc3", 0); });
    EXPECT_EQ(traceState().sweepDone, 1);
    EXPECT_EQ(WaitForSingleObject(turn.get(), 0), WAIT_OBJECT_0); // given back
}

TEST_F(TraceConfig, ExpiredNumberIsDeletedAndTheTracesAreLookedAtButStay)
{
    static int marked;
    marked = 0;
    const importPatch_t move{"MoveFileExW", +[] { return ++marked; }};
    setText(L"FileName", (folder / "new.trc3").wstring());
    std::ofstream(folder / "old.trc3") << "x";
    EXPECT_FALSE(theTracer().expire());
    for (const DWORD value : {daysFromNow(1), DWORD{1}, daysFromNow(-1), DWORD{0}}) {
        const bool on = value == 1 || value > daysFromNow(0);
        setNumber(L"DoTrace", value);
        follow();
        EXPECT_EQ(traceActive(), on);
        EXPECT_EQ(theTracer().expire(), on); // was still there
        EXPECT_NE(traceState().sweepDone, on);
    }
    EXPECT_EQ(marked, 0);
    setNumber(L"DoTrace", 0);
    const importHooks_t denied(
        GetModuleHandleW(nullptr), {{"RegOpenKeyExW", ERROR_ACCESS_DENIED}},
        +[](const hookedCall_t& call) {
            return static_cast<REGSAM>(call.argument(3)) != KEY_READ;
        });
    EXPECT_TRUE(theTracer().expire()); // was there, and stays
    EXPECT_TRUE(theTracer().expire());
}

TEST_F(TraceConfig, FileNameTakesTheFolderFromTheEnvironmentTracePathLowFirst)
{
    SetEnvironmentVariableW(L"VL_TRACES", folder.c_str());
    std::wstring name;
    setNumber(L"noTimestamp", 1);
    for (const auto& [value, at] : {std::pair(L"TracePath", L"b"), {L"TracePathLow", L"a"}}) {
        setText(value, std::wstring(L"%VL_TRACES%\\") + at);
        theTracer().fileName(name, false);
        EXPECT_TRUE(name.starts_with((folder / at / component).wstring() + L".x64."));
        EXPECT_EQ(name.find(L"~~"), std::wstring::npos);
    }
    setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", L"FileName", L"C:\\x", REG_BINARY);
    std::wstring unchanged;
    theTracer().fileName(unchanged, false);
    EXPECT_EQ(unchanged, name);
}
