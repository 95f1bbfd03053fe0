#include "shared/toolmain.h"

#include <iostream>

#ifdef _WIN32
#include "common/scoped.h"
#include "common/text.h"

#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#endif

CToolStreams::CToolStreams()
{
#ifdef _WIN32
    for (FILE* const stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    m_codePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
#endif
    std::ios::sync_with_stdio(false);
}

CToolStreams::~CToolStreams()
{
    std::cout.flush(); // while the console still reads UTF-8
#ifdef _WIN32
    SetConsoleOutputCP(m_codePage);
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
