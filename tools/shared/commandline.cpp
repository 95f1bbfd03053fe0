#include "shared/commandline.h"

#include "formats/text/printable.h"
#include "shared/habits.h"
#include "shared/jsontext.h"
#include "shared/terminal.h"
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
    return CToolError(named ? '"' + words.front() + "\" is no " +
                                  (words.front()[0] == '-' ? "option" : "command")
                            : error.what(),
                      "see " + path + "--help", exitStatus::wrongUsage);
}

// CFailures prints the one line of a failure: for people, or as a JSON document.
class CFailures
{
public:
    CFailures(const CLI::App& app, std::ostream& out, std::ostream& err, bool json)
        : m_app(app), m_out(out), m_err(err), m_json(json)
    {}

    int Report(const CToolError& error) const
    {
        m_out.flush();
        if (m_json) {
            Json::Value line(Json::objectValue);
            line["schema"] = "error-1";
            line["tool"] = m_app.get_name();
            line["error"] = error.What();
            line["hint"] = error.Hint();
            line["exitStatus"] = error.ExitStatus();
            m_err << jsonText(line, false) << '\n';
        } else {
            m_err << coloured(m_err, colour_t::red, m_app.get_name() + ':') << ' '
                  << printable(error.what()) << '\n';
        }
        return error.ExitStatus();
    }

private:
    const CLI::App& m_app;
    std::ostream& m_out;
    std::ostream& m_err;
    const bool m_json;
};

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
    const CFailures failures(app, out, err, wantsJson(arguments));
    addHabits(app);
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
        return failures.Report(usageError(app, error));
    } catch (const CToolError& error) {
        return failures.Report(error);
    } catch (const std::bad_alloc&) {
        return failures.Report(CToolError("out of memory", "close other programs and try again"));
    } catch (const std::exception& error) {
        return failures.Report(CToolError(error.what()));
    }
}

int runTool(CLI::App& app, int argc, char** argv)
{
    const CToolStreams streams;
    return runTool(app, toolArguments(argc, argv), std::cout, std::cerr);
}
