#include "support/importhooks.h"
#include "tracefixture.h"

using namespace tracecore;

class LineSink : public tracingFixture
{
protected:
    // What the console shows in a row, the colour of its end, and the size of its buffer.
    static std::tuple<std::wstring, WORD, int> shownIn(SHORT row)
    {
        std::wstring text(240, L'\0');
        WORD colours[240] = {};
        DWORD got = 0;
        const CFileHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                             OPEN_EXISTING, 0, nullptr));
        ReadConsoleOutputCharacterW(screen.get(), text.data(), 240, {0, row}, &got);
        ReadConsoleOutputAttribute(screen.get(), colours, 240, {0, row}, &got);
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(screen.get(), &info);
        text.erase(text.find_last_not_of(L' ') + 1);
        return {text, colours[text.size() - 1], info.dwSize.X * info.dwSize.Y};
    }
};

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
        {L"D'`I0A`'debug", L"debug", 10},
        {L"E-2147024891 rest", L"*ERR* " + denied + L" rest", 12},
        {L"E0 '`I04`'N/A", L"*ERR* '`I04`'N/A", 12},
        {L"E-2147418113 dropped", L"*ERR* 8000FFFF", 12},
        {L"U'`I10`'above", L"'`I10`'above", 7},
    };
    for (SHORT row = 0; const auto& [message, line, colour] : cases) {
        console->write(static_cast<char>(*message), message + 1, "f");
        EXPECT_EQ(shownIn(row++), std::tuple(prefix + line, colour, 240 * 2048));
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
    static std::string calls;
    calls.clear();
    std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    {
        const std::vector<hookedFunction_t> functions = {
            {"AllocConsole"},     {"CloseHandle"},           {"CreateFileW"},
            {"FreeConsole"},      {"SetConsoleCtrlHandler"}, {"SetConsoleScreenBufferSize"},
            {"SetConsoleTitleW"}, {"SetConsoleWindowInfo"}};
        const importHooks_t hooks(
            GetModuleHandleW(nullptr), functions, +[](const hookedCall_t& call) {
                const bool file = call.function == std::string_view("CreateFileW");
                calls += call.shown(file ? "tnn-n" : "") + "; ";
                return false;
            });
        console->write('T', L"12:00:00.000", "f");
        console->write('U', L"text", "f");
        EXPECT_EQ(calls, "CreateFileW CONOUT$ 40000000 2 3; ");
        EXPECT_EQ(std::get<0>(shownIn(0)), prefix + L"text");
        calls.clear();
        console.reset();
    }
    EXPECT_EQ(calls, "SetConsoleCtrlHandler; CloseHandle; FreeConsole; ");
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
