#include "commandline.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#include <shellapi.h>

#include "common/scoped.h"
#include "common/text.h"
#endif

namespace {

// The arguments without the program's name.
std::vector<std::string> argumentsOf([[maybe_unused]] int argc, [[maybe_unused]] char** argv)
{
#ifdef _WIN32
    int count = 0;
    LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    const CLocalMemory owner(wide);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(utf8FromWide(wide[i]));
    return arguments;
#else
    return {argv + 1, argv + argc};
#endif
}

void useBytesAndUtf8()
{
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
#endif
}

} // namespace

int runTool(CLI::App& app, int argc, char** argv)
{
    useBytesAndUtf8();
    try {
        std::vector<std::string> arguments = argumentsOf(argc, argv);
        std::reverse(arguments.begin(), arguments.end()); // the order that the parser takes them in
        app.parse(std::move(arguments));
        std::cout.flush();
        if (!std::cout)
            throw CToolError("standard output can't be written");
        return 0;
    } catch (const CLI::CallForHelp& call) {
        return app.exit(call);
    } catch (const CLI::CallForVersion& call) {
        return app.exit(call);
    } catch (const CLI::ParseError& error) {
        std::cerr << app.get_name() << ": " << error.what() << " (see --help)\n";
        return 2;
    } catch (const CToolError& error) {
        std::cout.flush();
        std::cerr << app.get_name() << ": " << error.what() << '\n';
        return error.ExitStatus();
    } catch (const std::bad_alloc&) {
        std::cerr << app.get_name() << ": out of memory\n";
        return 1;
    } catch (const std::exception& error) {
        std::cerr << app.get_name() << ": " << error.what() << '\n';
        return 1;
    }
}
