#include "tracefixture.h"

using namespace tracecore;

using LineSink = tracingFixture;

const std::wstring prefix = formatWide(L"0x%x 12:00:00.000 f() ", GetCurrentThreadId());

TEST_F(LineSink, ConsoleShowsMessagesInColourAndPlaysATuneForItsEnd)
{
    static std::wstring tune;
    tune.clear();
    static PHANDLER_ROUTINE handler;
    const importPatch_t beep{"Beep", +[](DWORD frequency, DWORD duration) -> BOOL {
                                 tune += formatWide(L" %d/%d", frequency, duration);
                                 return TRUE;
                             }};
    const importPatch_t sleep{"Sleep", +[](DWORD time) { tune += formatWide(L" -%d", time); }};
    const importPatch_t control{"SetConsoleCtrlHandler",
                                +[](PHANDLER_ROUTINE routine, BOOL add) -> BOOL {
                                    handler = add ? routine : nullptr;
                                    return TRUE;
                                }};
    wchar_t text[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 0x80070005, 0x400, text, 512, nullptr);
    const std::wstring denied(text, wcscspn(text, L"\r\n"));
    FreeConsole();
    std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    console->write('T', L"12:00:00.000", "f");
    console->write('>', L"f", "f");
    const std::tuple<char, const wchar_t*, std::wstring, WORD> cases[] = {
        {'U', L"'`I04`'SA: x", L"SA: x", 4},
        {'U', L"'`I10`'above", L"'`I10`'above", 7},
        {'D', L"'`I0A`'debug", L"debug", 10},
        {'E', L"-2147024891 rest of it", L"*ERR* " + denied + L" rest of it", 12},
        {'E', L"0 '`I04`'N/A", L"*ERR* '`I04`'N/A", 12},
        {'E', L"-2147418113 dropped", L"*ERR* 8000FFFF", 12},
        {'E', L" 5 x", L"*ERR* 5 x", 12},
    };
    for (SHORT row = 0; row < static_cast<SHORT>(std::size(cases)); ++row) {
        const auto& [level, message, line, colour] = cases[row];
        console->write(level, message, "f");
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
        EXPECT_EQ(formatWide(L"%d %d %d", info.dwSize.X, info.dwSize.Y, info.wAttributes),
                  L"240 2048 7");
    }
    ASSERT_NE(handler, nullptr);
    std::wstring expected;
    for (const auto& [event, beeps, handled] :
         {std::tuple(0u, 4, TRUE), {1u, 5, FALSE}, {2u, 3, TRUE}, {5u, 2, FALSE}, {6u, 1, FALSE}}) {
        EXPECT_EQ(handler(event), handled) << event;
        expected += L" 200/200 400/200 -500 400/200 200/200 600/200 200/200 200/200 -1000";
        for (int i = 0; i < beeps; ++i)
            expected += L" 200/200";
    }
    EXPECT_FALSE(handler(3)); // silently
    EXPECT_EQ(tune, expected);
    console.reset();
    EXPECT_EQ(handler, nullptr);
}

TEST_F(LineSink, DebuggerGetsTheLinesWithTheDirectivesInThem)
{
    static std::wstring lines;
    lines.clear();
    const importPatch_t output{"OutputDebugStringW", +[](const wchar_t* line) { lines += line; }};
    const std::unique_ptr<outputStorageInterface_i> debugger = createSink(sinkIDE);
    debugger->write('T', L"12:00:00.000", "f");
    debugger->write('U', L"'`I04`'x", "f");
    debugger->write('E', L"0 note", "f");
    EXPECT_EQ(lines, prefix + L"'`I04`'x\n" + prefix + L"*ERR* note\n");
}
