#include "tracefixture.h"

using namespace tracecore;

using LineSink = tracingFixture;

const std::wstring prefix = formatWide(L"0x%x 12:00:00.000 f() ", GetCurrentThreadId());

TEST_F(LineSink, ConsoleShowsMessagesInColourAndPlaysATuneForItsEnd)
{
    static std::wstring tune;
    tune.clear();
    static PHANDLER_ROUTINE handler;
    const importPatch_t beep{"Beep", +[](DWORD frequency, DWORD duration) {
                                 tune += formatWide(L" %d/%d", frequency, duration);
                             }};
    const importPatch_t sleep{"Sleep", +[](DWORD time) { tune += formatWide(L" -%d", time); }};
    const importPatch_t control{"SetConsoleCtrlHandler", +[](PHANDLER_ROUTINE routine, BOOL add) {
                                    handler = add ? routine : nullptr;
                                }};
    wchar_t text[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 0x80070005, 0x400, text, 512, nullptr);
    const std::wstring denied(text, wcscspn(text, L"\r\n"));
    FreeConsole();
    std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    console->write('T', L"12:00:00.000", "f");
    console->write('>', L"f", "f");
    const std::tuple<const wchar_t*, std::wstring, WORD> cases[] = {
        {L"U'`I04`'SA: x", L"SA: x", 4},
        {L"U'`I10`'above", L"'`I10`'above", 7},
        {L"D'`I0A`'debug", L"debug", 10},
        {L"E-2147024891 rest", L"*ERR* " + denied + L" rest", 12},
        {L"E0 '`I04`'N/A", L"*ERR* '`I04`'N/A", 12},
        {L"E-2147418113 dropped", L"*ERR* 8000FFFF", 12},
    };
    for (SHORT row = 0; const auto& [message, line, colour] : cases) {
        console->write(static_cast<char>(*message), message + 1, "f");
        const CFileHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                             OPEN_EXISTING, 0, nullptr));
        std::wstring shown(240, L'\0');
        WORD colours[240] = {};
        DWORD got = 0;
        ReadConsoleOutputCharacterW(screen.get(), shown.data(), 240, {0, row}, &got);
        ReadConsoleOutputAttribute(screen.get(), colours, 240, {0, row}, &got);
        shown.erase(shown.find_last_not_of(L' ') + 1);
        EXPECT_EQ(shown, prefix + line);
        EXPECT_EQ(colours[shown.size() - 1], colour);
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(screen.get(), &info);
        EXPECT_EQ(info.dwSize.X * info.dwSize.Y, 240 * 2048);
        ++row;
    }
    ASSERT_NE(handler, nullptr);
    std::wstring expected, beeps; // more of them each time
    for (const DWORD event : {6u, 5u, 2u, 0u, 1u}) {
        EXPECT_EQ(handler(event), event == 2 || event == 0) << event;
        expected += L" 200/200 400/200 -500 400/200 200/200 600/200 200/200 200/200 -1000";
        expected += beeps += L" 200/200";
    }
    EXPECT_FALSE(handler(3)); // silently
    EXPECT_EQ(tune, expected);
    console.reset();
    EXPECT_EQ(handler, nullptr);
}

TEST_F(LineSink, PresentConsoleStaysAsItIs)
{
    FreeConsole();
    AllocConsole();
    static int calls;
    calls = 0;
    const importPatch_t alloc{"AllocConsole", +[] { return ++calls; }};
    const importPatch_t size{"SetConsoleScreenBufferSize", +[] { return ++calls; }};
    const importPatch_t window{"SetConsoleWindowInfo", +[] { return ++calls; }};
    const importPatch_t title{"SetConsoleTitleW", +[] { return ++calls; }};
    static BOOL added;
    added = FALSE;
    const importPatch_t control{"SetConsoleCtrlHandler",
                                +[](PHANDLER_ROUTINE, BOOL add) { added |= add; }};
    static std::wstring asked;
    std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    {
        const importPatch_t file{"CreateFileW",
                                 +[](const wchar_t* name, DWORD access, DWORD share,
                                     SECURITY_ATTRIBUTES*, DWORD how, DWORD, HANDLE) {
                                     asked = formatWide(L"%s %x %d %d", name, access, share, how);
                                     return CreateFile2(name, access, share, how, nullptr);
                                 }};
        console->write('T', L"12:00:00.000", "f");
        console->write('U', L"text", "f");
    }
    EXPECT_EQ(asked, L"CONOUT$ 40000000 2 3");
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(added);
    const CFileHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                         OPEN_EXISTING, 0, nullptr));
    std::wstring shown((prefix + L"text").size(), L'\0');
    DWORD got = 0;
    ReadConsoleOutputCharacterW(screen.get(), shown.data(), static_cast<DWORD>(shown.size()),
                                {0, 0}, &got);
    EXPECT_EQ(shown, prefix + L"text");
}

TEST_F(LineSink, DebuggerGetsTheLinesWithTheDirectivesInThem)
{
    static std::wstring lines;
    lines.clear();
    const importPatch_t output{"OutputDebugStringW", +[](const wchar_t* line) { lines += line; }};
    const std::unique_ptr<outputStorageInterface_i> debugger = createSink(sinkIDE);
    debugger->write('T', L"12:00:00.000", "f");
    debugger->write('U', L"'`I04`'x", "f");
    EXPECT_EQ(lines, prefix + L"'`I04`'x\n");
}
