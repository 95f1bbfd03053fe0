#include "shared/commandline.h"

#include "formats/text/printable.h"
#include "shared/toolmain.h"

#include <algorithm>
#include <iostream>

namespace {

// usageError says what is wrong with a command line that app refused. A word that is no command is
// named: the parser itself would only say that a command is required.
std::string usageError(const CLI::App& app, const CLI::Error& error)
{
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    const std::vector<std::string> words = app.remaining(true);
    if (command->get_require_subcommand_min() == 0 || words.empty())
        return error.what();
    return '"' + words.front() + "\" is no " + (words.front()[0] == '-' ? "option" : "command");
}

} // namespace

int runTool(CLI::App& app, std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
            const std::function<int()>& work)
{
    const auto failed = [&](const std::string& what, int status) {
        out.flush();
        err << app.get_name() << ": " << printable(what) << '\n';
        return status;
    };
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order that the parser takes them in
        app.parse(std::move(arguments));
        const int status = work ? work() : exitStatus::good;
        if (!out.flush()) // a full disk shows only when the last block goes out
            throw CToolError("standard output can't be written",
                             "is the disk full, or the reader gone?");
        return status;
    } catch (const CLI::Success& help) {
        return app.exit(help, out, err);
    } catch (const CLI::ParseError& error) {
        return failed(usageError(app, error) + " (see " + app.get_name() + " --help)",
                      exitStatus::wrongUsage);
    } catch (const CToolError& error) {
        return failed(error.what(), error.ExitStatus());
    } catch (const std::bad_alloc&) {
        return failed("out of memory (close other programs and try again)", exitStatus::failed);
    } catch (const std::exception& error) {
        return failed(error.what(), exitStatus::failed);
    }
}

int runTool(CLI::App& app, int argc, char** argv)
{
    const CToolStreams streams;
    return runTool(app, toolArguments(argc, argv), std::cout, std::cerr);
}
