#include "shared/terminal.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

// One command line makes one process.
bool quietly = false;
colouring_t wanted = colouring_t::automatic;

bool isSet(const char* variable) noexcept
{
    const char* const value = std::getenv(variable);
    return value && *value;
}

#ifdef _WIN32
bool consoleMode(const std::ostream& stream, DWORD& mode) noexcept
{
    const bool isError = &stream == &std::cerr;
    return (isError || &stream == &std::cout) &&
           GetConsoleMode(GetStdHandle(isError ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE), &mode);
}

bool showsColours(const std::ostream& stream) noexcept
{
    DWORD mode = 0;
    return consoleMode(stream, mode) && (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}
#else
bool showsColours(const std::ostream& stream) noexcept
{
    const char* const terminal = std::getenv("TERM");
    return isTerminal(stream) && terminal && std::string_view(terminal) != "dumb";
}
#endif

} // namespace

bool isTerminal(const std::ostream& stream) noexcept
{
#ifdef _WIN32
    DWORD mode = 0;
    return consoleMode(stream, mode);
#else
    return (&stream == &std::cout && isatty(STDOUT_FILENO)) ||
           (&stream == &std::cerr && isatty(STDERR_FILENO));
#endif
}

std::string coloured(const std::ostream& stream, colour_t colour, const std::string& text)
{
    if (wanted == colouring_t::never ||
        (wanted == colouring_t::automatic && (isSet("NO_COLOR") || !showsColours(stream))))
        return text;
    return "\x1B[" + std::to_string(static_cast<int>(colour)) + 'm' + text + "\x1B[0m";
}

void setColouring(colouring_t colouring) noexcept
{
    wanted = colouring;
}

bool isQuiet() noexcept
{
    return quietly;
}

void setQuiet(bool quiet) noexcept
{
    quietly = quiet;
}
