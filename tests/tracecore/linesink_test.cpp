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
    const std::wstring denied = systemText(0x80070005);
    const std::wstring prefix = formatWide(L"0x%x 12:00:00.000 f() ", GetCurrentThreadId());
};

TEST_F(LineSink, ConsoleShowsMessagesInColour)
{
    FreeConsole();
    const std::unique_ptr<outputStorageInterface_i> console = createSink(sinkConsole);
    console->write('T', L"12:00:00.000", "f");
    console->write('>', L"f", "f");
    const struct {
        char level;
        const wchar_t* text;
        std::wstring line;
        WORD colour;
    } cases[] = {
        {'U', L"'`I04`'SA: x", L"SA: x", 4},
        {'U', L"'`I10`'above", L"'`I10`'above", 7},
        {'D', L"'`I0A`'debug", L"debug", 10},
        {'E', L"-2147024891 rest of it", L"*ERR* " + denied + L" rest of it", 12},
        {'E', L"0 '`I04`'N/A", L"*ERR* '`I04`'N/A", 12},
        {'E', L"-2147418113 dropped", L"*ERR* 8000FFFF", 12},
        {'E', L" 5 x", L"*ERR* 5 x", 12},
    };
    for (const auto& c : cases)
        console->write(c.level, c.text, "f");
    const CFileHandle screen(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, 3, nullptr,
                                         OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(screen);
    for (SHORT row = 0; row < static_cast<SHORT>(std::size(cases)); ++row) {
        const auto& c = cases[row];
        std::wstring shown(240, L'\0');
        WORD colours[240] = {};
        DWORD got = 0;
        ReadConsoleOutputCharacterW(screen.get(), shown.data(), 240, {0, row}, &got);
        ReadConsoleOutputAttribute(screen.get(), colours, 240, {0, row}, &got);
        shown.erase(shown.find_last_not_of(L' ') + 1);
        EXPECT_EQ(shown, prefix + c.line);
        EXPECT_EQ(colours[shown.size() - 1], c.colour);
    }
    CONSOLE_SCREEN_BUFFER_INFO info{};
    ASSERT_TRUE(GetConsoleScreenBufferInfo(screen.get(), &info));
    EXPECT_EQ(formatWide(L"%d %d %d", info.dwSize.X, info.dwSize.Y, info.wAttributes),
              L"240 2048 7");
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
