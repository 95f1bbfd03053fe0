#include "tracecore/sinks.h"
#include "tracecore/tracer.h"

#include <algorithm>
#include <iterator>

namespace tracecore {

namespace {

constexpr COORD bufferSize = {240, 2048};

void beep(DWORD frequency) noexcept
{
    Beep(frequency, 200);
}

// The tune before the process goes; the extra beeps at its end say which event it is.
BOOL WINAPI playEvent(DWORD event)
{
    static constexpr struct {
        DWORD event;
        int beeps;
        BOOL handled;
    } events[] = {
        {CTRL_C_EVENT, 4, TRUE},       {CTRL_BREAK_EVENT, 5, FALSE},    {CTRL_CLOSE_EVENT, 3, TRUE},
        {CTRL_LOGOFF_EVENT, 2, FALSE}, {CTRL_SHUTDOWN_EVENT, 1, FALSE},
    };
    const auto* const entry =
        std::find_if(std::begin(events), std::end(events),
                     [event](const auto& candidate) { return candidate.event == event; });
    if (entry == std::end(events))
        return FALSE;
    beep(200);
    beep(400);
    Sleep(500);
    for (const DWORD frequency : {400U, 200U, 600U, 200U, 200U})
        beep(frequency);
    Sleep(1000);
    for (int i = 0; i < entry->beeps; ++i)
        beep(200);
    return entry->handled;
}

void enlarge(HANDLE console) noexcept
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(console, &info))
        return;
    const COORD largest = GetLargestConsoleWindowSize(console);
    if (largest.X == 0 || largest.Y == 0)
        return;
    const int width = std::min<int>(info.srWindow.Right - info.srWindow.Left + 1, largest.X);
    const int height = std::min<int>(info.srWindow.Bottom - info.srWindow.Top + 1, largest.Y);
    const SMALL_RECT window = {0, 0, static_cast<SHORT>(width - 1), static_cast<SHORT>(height - 1)};
    const int present = info.dwSize.X * info.dwSize.Y;
    if (present > width * height) { // the window must lie within the buffer at each step
        SetConsoleWindowInfo(console, TRUE, &window);
        SetConsoleScreenBufferSize(console, bufferSize);
    } else if (present < width * height) {
        SetConsoleScreenBufferSize(console, bufferSize);
        SetConsoleWindowInfo(console, TRUE, &window);
    }
}

} // namespace

void outputStorageConsole_t::prepare()
{
    if (opened)
        return;
    opened = true;
    HANDLE present = CreateFileW(L"CONOUT$", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                                 OPEN_EXISTING, 0, nullptr);
    if (present != INVALID_HANDLE_VALUE) {
        console = present;
        return;
    }
    if (!AllocConsole()) {
        FreeConsole();
        AllocConsole();
    }
    HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    console = output == INVALID_HANDLE_VALUE ? nullptr : output;
    enlarge(console);
    wchar_t title[256] = {};
    if (GetConsoleTitleW(title, static_cast<DWORD>(std::size(title))))
        SetConsoleTitleW(formatWide(L"DBG [PID:%04X]: %s", GetCurrentProcessId(), title).c_str());
    if (console)
        SetConsoleCtrlHandler(playEvent, TRUE);
}

void outputStorageConsole_t::emit(const std::wstring& line)
{
    prepare();
    if (line.empty() || !console)
        return;
    DWORD written = 0;
    WriteConsoleW(console, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

outputStorageConsole_t::~outputStorageConsole_t()
{
    if (!opened)
        return;
    if (console) {
        SetConsoleCtrlHandler(playEvent, FALSE);
        CloseHandle(console);
    }
    FreeConsole();
}

} // namespace tracecore
