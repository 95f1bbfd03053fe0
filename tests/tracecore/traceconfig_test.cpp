#include "common/module.h"
#include "common/text.h"
#include "tracecore/tracefilename.h"
#include "tracefixture.h"

#include <algorithm>
#include <ctime>

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
    for (const auto& [zone, hours] :
         {std::pair("TZ=UTC0", 0), {"TZ=AAA5", -5}, {"TZ=BBB-13", 13}}) {
        _putenv(zone);
        _tzset();
        const int64_t offset = hours * 3600;
        for (int i = 0; i < 48; ++i) { // each full hour, and a second before
            now = midnight + i / 2 * 3600 - i % 2;
            for (int64_t time = midnight - 2 * day; time <= midnight + 4 * day; time += 1800) {
                const int64_t days = (time + offset) / day - (now + offset) / day;
                ASSERT_EQ(daysUntil(time), std::max<int64_t>(0, days))
                    << zone << ' ' << now << ' ' << time;
            }
        }
    }
    _putenv("TZ=");
    _tzset();
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
