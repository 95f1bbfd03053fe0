#include "commandline.h"

#include <algorithm>
#include <iostream>

#include "toolmain.h"
#include "usage.h"

namespace {

// Texts of the system and of the parser may have several lines.
std::string oneLine(std::string text)
{
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    return text;
}

int failed(const CLI::App& app, const std::string& what, int status)
{
    std::cout.flush();
    std::cerr << app.get_name() << ": " << oneLine(what) << '\n';
    return status;
}

} // namespace

int runTool(CLI::App& app, int argc, char** argv)
{
    const CToolStreams streams;
    try {
        std::vector<std::string> arguments = toolArguments(argc, argv);
        std::reverse(arguments.begin(), arguments.end()); // the order that the parser takes them in
        app.parse(std::move(arguments));
        std::cout.flush();
        if (!std::cout)
            throw CToolError("standard output can't be written",
                             "is the disk full, or the reader gone?");
        return 0;
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        return failed(app, usageError(app, error) + " (see --help)", 2);
    } catch (const CToolError& error) {
        return failed(app, error.what(), error.ExitStatus());
    } catch (const std::bad_alloc&) {
        return failed(app, "out of memory (close other programs and try again)", 1);
    } catch (const std::exception& error) {
        return failed(app, error.what(), 1);
    }
}
