#include "support/growth.h"
#include "tracefixture.h"

using namespace tracecore;

class LineSink : public tracingFixture
{
protected:
    // What the console shows in a row, the colour of that, and the size of its buffer.
    static std::tuple<std::wstring, WORD, int> shownIn(SHORT row)
    {
        std::wstring text(240, L'\0');
        WORD colour = 0;
        DWORD got = 0;
        const CFileHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                             OPEN_EXISTING, 0, nullptr));
        ReadConsoleOutputCharacterW(screen.get(), text.data(), 240, {0, row}, &got);
        ReadConsoleOutputAttribute(screen.get(), &colour, 1, {0, row}, &got);
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(screen.get(), &info);
        text.erase(text.find_last_not_of(L' ') + 1);
        return {text, colour, info.dwSize.X * info.dwSize.Y};
    }
};

const std::wstring prefix = formatWide(L"0x%x 12:00:00.000 f() ", GetCurrentThreadId());

TEST_F(LineSink, ConsoleShowsMessagesInColourAndPlaysATuneForItsEnd)
{
    static PHANDLER_ROUTINE handler;
    static std::string tune;
    const importPatch_t beep{"Beep",
                             +[](DWORD tone, DWORD) { tune += std::to_string(tone / 100); }};
    const importPatch_t sleep{"Sleep", +[](DWORD time) { tune += std::string(time / 500, ' '); }};
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
        {L"D'`I0F`'debug", L"debug", 15},
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
    wchar_t title[64] = {};
    GetConsoleTitleW(title, 64);
    EXPECT_TRUE(
        std::wstring(title).starts_with(formatWide(L"DBG [PID:%04X]: ", GetCurrentProcessId())));
    const std::tuple<DWORD, BOOL, size_t> events[] = {{0, TRUE, 4},  {1, FALSE, 5}, {2, TRUE, 3},
                                                      {3, FALSE, 0}, {5, FALSE, 2}, {6, FALSE, 1}};
    for (const auto& [event, handled, last] : events) {
        tune.clear();
        EXPECT_EQ(handler(event), handled) << event;
        EXPECT_EQ(tune, last ? "24 42622  " + std::string(last, '2') : "") << event;
    }
    console.reset();
    EXPECT_EQ(handler, nullptr);
}

TEST_F(LineSink, PresentConsoleStaysAsItIsAndIsLetGoOf)
{
    FreeConsole();
    AllocConsole();
    SetConsoleTitleW(L"its own");
    const int size = std::get<int>(shownIn(0));
    static int freed;
    freed = 0;
    const importPatch_t release{"FreeConsole", +[] { return ++freed; }};
    const auto useIt = [] {
        const std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
        console->write('T', L"12:00:00.000", "f");
        console->write('U', L"text", "f");
    };
    EXPECT_EQ(grownBy(useIt), "");
    EXPECT_GT(freed, 0);
    EXPECT_EQ(std::get<std::wstring>(shownIn(0)), prefix + L"text");
    wchar_t title[64] = {};
    GetConsoleTitleW(title, 64);
    EXPECT_STREQ(title, L"its own");
    EXPECT_EQ(std::get<int>(shownIn(0)), size);
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
