#include "shared/commandline.h"

#include "shared/filesystem.h"
#include "shared/habits.h"
#include "shared/toolmain.h"

#include <algorithm>
#include <iostream>

namespace {

const CLI::App& chosenCommand(const CLI::App& app)
{
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    return *command;
}

// usageError says what is wrong with a command line that app refused. A word that is no command is
// named: the parser itself would only say that a command is required.
CToolError usageError(const CLI::App& app, const CLI::Error& error)
{
    const CLI::App& command = chosenCommand(app);
    std::string path;
    for (const CLI::App* at = &command; at; at = at->get_parent())
        path.insert(0, at->get_name() + ' ');
    const std::vector<std::string> words = app.remaining(true);
    const bool named = command.get_require_subcommand_min() != 0 && !words.empty();
    if (named && entryKind(pathOf(words.front())) != entryKind_t::missing)
        return CToolError("what to do with " + words.front() + " is missing",
                          "a command goes before it: see " + path + "--help",
                          exitStatus::wrongUsage);
    std::string what = error.what();
    if (what.starts_with(": ")) // of an option that help doesn't list
        what.erase(0, 2);
    return CToolError(named ? '"' + words.front() + "\" is no " +
                                  (words.front()[0] == '-' ? "option" : "command")
                            : what,
                      "see " + path + "--help", exitStatus::wrongUsage);
}

// takeHelp makes of "help COMMAND" what the parser knows: "COMMAND --help".
void takeHelp(std::vector<std::string>& arguments)
{
    if (arguments.empty() || arguments.front() != "help")
        return;
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
}

// Looked for by itself, as the parser may stop before it.
bool wantsJson(const std::vector<std::string>& arguments)
{
    const auto end = std::ranges::find(arguments, "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

} // namespace

int runTool(CLI::App& app, std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
            const std::function<int()>& work)
{
    const auto fail = [&, json = wantsJson(arguments)](const CToolError& error) {
        out.flush();
        reportFailure(err, app.get_name(), error, json);
        return error.ExitStatus();
    };
    addHabits(app);
    takeHelp(arguments);
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
        return fail(usageError(app, error));
    } catch (const CToolError& error) {
        return fail(error);
    } catch (const std::bad_alloc&) {
        return fail(CToolError("out of memory", "close other programs and try again"));
    } catch (const std::exception& error) {
        return fail(CToolError(error.what()));
    }
}

int runTool(CLI::App& app, int argc, char** argv)
{
    const CToolStreams streams;
    return runTool(app, toolArguments(argc, argv), std::cout, std::cerr);
}
