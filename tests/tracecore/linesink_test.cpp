#include "tracefixture.h"

using namespace tracecore;

namespace {

class LineSink : public tracingFixture
{
protected:
    static std::wstring systemText(DWORD status)
    {
        wchar_t text[512] = {};
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, status,
                       0x400, text, 512, nullptr);
        return std::wstring(text).substr(0, wcscspn(text, L"\r\n"));
    }
    static CFileHandle openScreen()
    {
        return CFileHandle(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
    }

    const std::wstring denied = systemText(0x80070005);
    const std::wstring prefix = formatWide(L"0x%x 12:00:00.000 f() ", GetCurrentThreadId());
};

TEST_F(LineSink, ConsoleShowsMessagesInColour)
{
    FreeConsole();
    const std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    console->write('T', L"12:00:00.000", "f");
    console->write('>', L"f", "f");
    EXPECT_FALSE(openScreen()); // nothing shown, so nothing opened
    ASSERT_FALSE(denied.empty());
    const struct {
        char level;
        const wchar_t* text;
        std::wstring line;
        WORD colour;
    } cases[] = {
        {'U', L"'`I04`'SA: x", L"SA: x", 4},
        {'U', L"'`I0f`'white", L"white", 15},
        {'U', L"'`I10`'above", L"'`I10`'above", 7},
        {'U', L"'`Izz`'none", L"'`Izz`'none", 7},
        {'D', L"'`I0A`'debug", L"debug", 10},
        {'E', L"-2147024891 rest of it", L"*ERR* " + denied + L" rest of it", 12},
        {'E', L"0 note", L"*ERR* note", 12},
        {'U', L"plain", L"plain", 7},
        {'E', L"0 '`I04`'N/A", L"*ERR* '`I04`'N/A", 12},
        {'E', L"-2147418113 dropped", L"*ERR* 8000FFFF", 12},
        {'E', L"bare", L"*ERR* bare", 12},
        {'E', L" 5 x", L"*ERR* 5 x", 12},
    };
    for (const auto& c : cases)
        console->write(c.level, c.text, "f");
    const CFileHandle screen = openScreen();
    ASSERT_TRUE(screen);
    for (SHORT row = 0; row < static_cast<SHORT>(std::size(cases)); ++row) {
        SCOPED_TRACE(row);
        const auto& c = cases[row];
        std::wstring shown(240, L'\0');
        WORD colours[240] = {};
        DWORD got = 0;
        ReadConsoleOutputCharacterW(screen.get(), shown.data(), 240, {0, row}, &got);
        ReadConsoleOutputAttribute(screen.get(), colours, 240, {0, row}, &got);
        shown.erase(shown.find_last_not_of(L' ') + 1);
        EXPECT_EQ(shown, prefix + c.line);
        EXPECT_EQ(colours[0], c.colour);
        EXPECT_EQ(colours[shown.size() - 1], c.colour);
    }
    CONSOLE_SCREEN_BUFFER_INFO info{};
    ASSERT_TRUE(GetConsoleScreenBufferInfo(screen.get(), &info));
    EXPECT_EQ(info.dwSize.X, 240);
    EXPECT_EQ(info.dwSize.Y, 2048);
    EXPECT_EQ(info.wAttributes, 7);
    EXPECT_EQ(info.dwCursorPosition.Y, static_cast<SHORT>(std::size(cases)));
}

TEST_F(LineSink, ControlEventsPlayTheirTunes)
{
    static PHANDLER_ROUTINE handler;
    static std::wstring tune;
    const importPatch_t handlers = fake(
        "SetConsoleCtrlHandler",
        +[](PHANDLER_ROUTINE routine, BOOL add) -> BOOL { return (handler = routine) && add; });
    const importPatch_t beeps = fake(
        "Beep", +[](DWORD frequency, DWORD length) -> BOOL {
            tune += std::to_wstring(frequency / length);
            return TRUE;
        });
    const importPatch_t pauses = fake(
        "Sleep", +[](DWORD length) { tune += length == 500 ? L'-' : L'='; });
    FreeConsole();
    createSink(sinkConsole)->write('U', L"open", "f");
    ASSERT_NE(handler, nullptr);
    const struct {
        DWORD event;
        const wchar_t* tune;
        BOOL handled;
    } cases[] = {{0, L"12-21311=1111", TRUE}, {1, L"12-21311=11111", FALSE},
                 {2, L"12-21311=111", TRUE},  {5, L"12-21311=11", FALSE},
                 {6, L"12-21311=1", FALSE},   {3, L"", FALSE}};
    for (const auto& c : cases) {
        tune.clear();
        EXPECT_EQ(handler(c.event), c.handled);
        EXPECT_EQ(tune, c.tune);
    }
}

TEST_F(LineSink, DebuggerGetsTheLinesWithTheDirectivesInThem)
{
    const CKernelHandle memory(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                  4096, L"DBWIN_BUFFER"));
    const CKernelHandle room(CreateEventW(nullptr, FALSE, TRUE, L"DBWIN_BUFFER_READY"));
    const CKernelHandle data(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"));
    const auto view = static_cast<const char*>(MapViewOfFile(memory.get(), FILE_MAP_READ, 0, 0, 0));
    ASSERT_NE(view, nullptr);
    const std::unique_ptr<outputStorageInterface_i> debugger = createSink(sinkIDE);
    debugger->write('T', L"12:00:00.000", "f");
    for (const auto& [level, text, line] :
         {std::tuple('U', L"'`I04`'x", L"'`I04`'x"), std::tuple('E', L"0 note", L"*ERR* note")}) {
        debugger->write(level, text, "f");
        ASSERT_EQ(WaitForSingleObject(data.get(), 5000), WAIT_OBJECT_0);
        EXPECT_EQ(formatWide(L"%hs", view + 4), prefix + line + L"\n");
        SetEvent(room.get());
    }
    UnmapViewOfFile(view);
}

} // namespace
