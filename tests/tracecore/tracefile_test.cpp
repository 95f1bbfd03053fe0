#include "common/module.h"
#include "common/text.h"
#include "support/growth.h"
#include "tracecore/tracefilename.h"
#include "tracefixture.h"

using namespace tracecore;

using TraceFile = tracingFixture;

TEST_F(TraceFile, HoldsTheRecordsOfARunWithTheirTimesLateEntriesAndExits)
{
    testTime = {2017, 7, 0, 14, 23, 59, 59, 998};
    const decodedTrace_t trace = traced([] {
        std::string name = "outer";
        traceScope_t outer(name.c_str());
        name = "gone!";         // the name was copied
        traceScope_t("silent"); // is left at once
        testTime = {2017, 7, 0, 14, 23, 59, 59, 999};
        {
            traceScope_t inner("inn\xC3\xA9r");
            testTime = {2017, 7, 0, 15, 0, 0, 0, 0};
            traceText("one \xE2\x82\xAC");
            traceWrite('>', L"nothing");
            traceStatusW(L"two", E_ACCESSDENIED);
        }
        testTime = {2017, 8, 0, 15, 0, 0, 1, 0};
        traceScope_t sibling(nullptr);
        theTracer().stacks.frames()->last().entered += 199999; // the other clock is behind
        CKernelHandle held = std::move(theTracer().mutex);
        traceText("three"); // works without it
        theTracer().mutex = std::move(held);
        traceScope_t last("last");
        theTracer().stacks.frames()->last().entered += 200000; // and here was set back
        traceText("four");
    });
    EXPECT_EQ(trace.lines(), (strings{"t 07/14/17",
                                      "T 23:59:59.998",
                                      "> outer",
                                      "T 23:59:59.999",
                                      "> inn\xC3\xA9r",
                                      "t 07/15/17",
                                      "T 00:00:00.000",
                                      "U one \xE2\x82\xAC",
                                      "E -2147024891 two",
                                      "< ",
                                      "t 08/15/17",
                                      "T 00:00:01.000",
                                      "> ",
                                      "U three",
                                      "T 00:00:01.020",
                                      "> last",
                                      "T 00:00:01.000",
                                      "U four",
                                      "< ",
                                      "< ",
                                      "< "}));
}

TEST_F(TraceFile, LaterWriterAppendsANoteAndANewFileStartsWithTheHeader)
{
    theTracer().stacks.mainFrame.entered = 0; // outside all functions: since 1601
    const auto say = [] {
        SetLastError(4321);
        traceText("x");
        EXPECT_EQ(GetLastError(), 4321u); // opening the file set another
        traceLeave();                     // without a frame
    };
    setNumber(L"NewFileAlways", 0);
    traced(say);
    const strings lines = traced(say).lines();
    EXPECT_EQ(strings(lines.begin() + 2, lines.end()),
              (strings{"> main", "t 07/14/17", "T 01:02:03.045", "U x", "< ", "N 07-14-2017", "U x",
                       "< "}));
    setNumber(L"NewFileAlways", 1);
    EXPECT_EQ(traced(say).lines(), (strings{"U x", "< "}));
}

TEST_F(TraceFile, WritersOfOneFileLeaveEachOthersRecordsWhole)
{
    setText(L"FileName", (folder / "t.trc3").wstring());
    const std::unique_ptr<outputStorageInterface_i> one = createSink(sinkFileAppend),
                                                    other = createSink(sinkFileAppend);
    for (const auto& writer : {&one, &other, &one, &other})
        (*writer)->write('U', L"x", "f");
    EXPECT_EQ(decodeTrace(fileBytes(folder / "t.trc3")).lines(),
              (strings{"U x", "N 07-14-2017", "U x", "U x", "U x"}));
}

TEST_F(TraceFile, HoldsTextsOfAnyLengthAndSwitchingItKeepsNothing)
{
    const auto expectText = [this](size_t length) {
        const std::string text(length, 'a');
        EXPECT_EQ(traced([&] { traceText(text.c_str()); }).records.back().text, text) << length;
    };
    for (const size_t length : {1U, 8U, 349U, 350U, 65535U})
        expectText(length);
    EXPECT_EQ(grownBy([&] { expectText(9); }), "");
}

TEST_F(TraceFile, SwitchedOnInTheMiddleItShowsWhatWasEnteredBefore)
{
    const traceScope_t outer("outer"), inner("inner");
    const strings lines = traced([] { traceText("x"); }).lines();
    EXPECT_EQ(strings(lines.begin() + 2, lines.begin() + 5),
              (strings{"> outer", "> inner", "U x"}));
}

TEST_F(TraceFile, FileThatCannotBeOpenedSilencesTheProcessForGood)
{
    traceTo(L"missing\\t.trc3");
    traceText("lost");
    setNumber(L"NewFileAlways", 0);
    const std::filesystem::path path = traceTo(L"t.trc3");
    ASSERT_EQ(traceState().sinkKind, sinkFileAppend);
    traceText("lost as well");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TraceFile, HeaderNamesBuildSystemVersionAndProducts)
{
    static OSVERSIONINFOA system;
    system = {sizeof system, 6, 2, 0, 2, "Service Pack 3"};
    const importPatch_t version{"GetVersionExA",
                                +[](OSVERSIONINFOA* out) { return *out = system, TRUE; }};
    const auto header = [this] { return traced([] { traceText("x"); }).header; };
    {
        const importPatch_t module{"GetModuleFileNameA", +[] { return 0; }};
        const strings bare = header();
        EXPECT_EQ(bare[6] + bare[7], "FileVersion: UNKNOWNNo Veltrano products found");
    }
    setText(L"Version", L"8.1", L"Products\\Good");
    setText(L"Version", std::wstring(255, L'v'), L"Products\\Long");
    setText(L"Other", L"", L"Products\\None");
    setNumber(L"Version", 1, L"Products\\Typed");
    for (const auto& [type, value] : {std::pair(REG_BINARY, 0), {REG_DWORD, 1}, {REG_DWORD, 0}}) {
        EXPECT_EQ(header()[11], "installation: NETWORK"); // of the value before
        setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Policies\\Veltrano", L"NetworkSupport",
                 {static_cast<wchar_t>(value), 0}, static_cast<DWORD>(type), 4);
    }
    strings lines = header();
    lines[1].replace(10, 20, "BUILD"); // the length of a date and a time
    char machine[260];
    DWORD size = sizeof machine;
    GetComputerNameA(machine, &size);
    EXPECT_EQ(lines,
              (strings{"trace3", "Compiled: BUILD", "OS: UNKNOWN OS(Major:6 Minor:2)",
                       "ServicePack: Service Pack 3", std::string("Machine name: ") + machine,
                       "Trace Ver: 3.0.2", "FileVersion: 1.2.7.8", "Product: Good; Version: 8.1",
                       "Product: Long; Version: " + std::string(234, 'v'),
                       "Product: None; Version: ERROR(0x2)", "Product: Typed; Version: ERROR(0xD)",
                       "installation: LOCAL", "07/14/2017 01:02:03.045", "."}));
    for (const auto& [minor, name] : {std::pair(1U, "WindowsXP"), {7U, "Windows2000"}}) {
        system = {sizeof system, 5, minor, 0, 2, ""};
        EXPECT_EQ(header()[2], std::string("OS: ") + name);
    }
}

TEST_F(TraceFile, NameComesFromProgramModuleTimeAndSettings)
{
    static const wchar_t* program;
    const auto nameOf = [](HMODULE module, wchar_t* path) {
        return lstrlenW(lstrcpyW(path, module ? L"C:\\Apps\\My\\VL\u00D6nlineIDs.DLL" : program));
    };
    const auto fullName = [](const wchar_t* path, wchar_t* full) {
        return wcscmp(path, L"HOST~1.EXE") ? 0 : lstrlenW(lstrcpyW(full, L"C:\\My\\host.exe"));
    };
    const importPatch_t names{"GetModuleFileNameW", +nameOf}, full{"GetLongPathNameW", +fullName};
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    const std::wstring shared = formatWide(L".x64.vl\u00F6nlineids.dll%d.0.trc3", session);
    const std::wstring stamped =
        formatWide(L".x64.vl\u00F6nlineids.dll~~07.14.17_at_01.02.03.045~~%d.%d.trc3", session,
                   GetCurrentProcessId());
    const std::wstring mine = L"C:\\Apps\\My\\";
    const std::wstring deep = (folder / L"a" / L"b").generic_wstring();
    const std::tuple<const wchar_t*, bool, bool, bool, std::wstring, std::wstring, std::wstring>
        cases[] = {
            {L"host.exe", true, true, false, L"  C:\\x y  ", L"", L"C:\\x y"},
            {L"host.exe", false, true, true, L"   ", L"", mine + L"host" + shared},
            {L"HOST~1.EXE", true, true, true, L"", L"", mine + L"host" + stamped},
            {L"host.exe", false, true, false, L"", L" ", mine + L"host" + stamped},
            {L"dot.", false, true, true, L"", deep, deep + L"/dot." + shared},
            {L"iexplore.exe", false, false, true, L"", L"", mine + L"iexplore" + shared},
            {L"IExplore.exe.exe", false, false, true, L"", L"", mine + L"IExplore.exe" + stamped},
        };
    for (const auto& [host, newFile, ie1, noTimestamp, given, in, result] : cases) {
        program = host;
        EXPECT_EQ(result, composeTraceFileName(thisModule(), newFile, ie1, noTimestamp, given, in));
    }
    EXPECT_TRUE(std::filesystem::is_directory(deep));
}
