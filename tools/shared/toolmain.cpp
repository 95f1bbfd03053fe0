#include "shared/toolmain.h"

#include <iostream>
#include <iterator>

#ifdef _WIN32
#include "common/scoped.h"
#include "common/text.h"

#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#endif

#ifdef _WIN32
namespace {

constexpr DWORD streams[] = {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
constexpr size_t streamCount = std::size(streams);

} // namespace
#endif

CToolStreams::CToolStreams()
{
#ifdef _WIN32
    for (FILE* const stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    m_codePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    for (size_t i = 0; i < streamCount; ++i)
        if (const HANDLE stream = GetStdHandle(streams[i]); GetConsoleMode(stream, &m_modes[i]))
            SetConsoleMode(stream, m_modes[i] | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
#endif
    std::ios::sync_with_stdio(false);
}

CToolStreams::~CToolStreams()
{
    std::cout.flush(); // while the console still reads UTF-8
#ifdef _WIN32
    SetConsoleOutputCP(m_codePage);
    for (size_t i = 0; i < streamCount; ++i)
        if (m_modes[i] != 0)
            SetConsoleMode(GetStdHandle(streams[i]), m_modes[i]);
#endif
}

std::vector<std::string> toolArguments([[maybe_unused]] int argc, [[maybe_unused]] char** argv)
{
#ifdef _WIN32
    int count = 0;
    LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
    const CLocalMemory owner(words);
    std::vector<std::string> arguments;
    for (int i = 1; words && i < count; ++i)
        arguments.push_back(utf8FromWide(words[i]));
    return arguments;
#else
    return {argv + 1, argv + argc};
#endif
}
