#include "shared/commandline.h"

#include "shared/filesystem.h"
#include "shared/habits.h"
#include "shared/toolmain.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>

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

COption COption::Required() const
{
    m_option->required();
    return *this;
}

COption COption::ShowDefault() const
{
    m_option->capture_default_str();
    return *this;
}

COption COption::ValueName(const std::string& word) const
{
    m_option->type_name(word);
    return *this;
}

COption COption::Group(const std::string& title) const
{
    m_option->group(title);
    return *this;
}

COption COption::Excludes(const COption& other) const
{
    m_option->excludes(other.m_option);
    return *this;
}

COption COption::OneEachTime() const
{
    m_option->allow_extra_args(false);
    return *this;
}

COption COption::Values(int least, int most) const
{
    m_option->expected(least, most);
    return *this;
}

COption COption::OneOf(const std::vector<std::string>& words) const
{
    m_option->check(oneOf(words));
    return *this;
}

COption COption::Check(std::function<std::string(const std::string& value)> fault) const
{
    m_option->check(std::move(fault));
    return *this;
}

CCommand CCommand::AddCommand(const std::string& name, const std::string& help,
                              const std::string& example) const
{
    CLI::App* const command = m_command->add_subcommand(name, help);
    command->footer("Example:\n  " + example);
    return CCommand(*command);
}

CCommand CCommand::AddGroup(const std::string& name, const std::string& help) const
{
    CLI::App* const group = m_command->add_subcommand(name, help);
    group->require_subcommand(1);
    return CCommand(*group);
}

template <class T>
COption CCommand::AddOption(const std::string& names, T& value, const std::string& help) const
{
    return COption(*m_command->add_option(names, value, help));
}

COption CCommand::AddFlag(const std::string& names, bool& value, const std::string& help) const
{
    return COption(*m_command->add_flag(names, value, help));
}

template <class T>
COption CCommand::AddTaken(const std::string& names,
                           std::function<void(const std::vector<T>&)> take,
                           const std::string& help) const
{
    return COption(*m_command->add_option_function<std::vector<T>>(names, std::move(take), help));
}

void CCommand::Do(std::function<void()> work) const
{
    m_command->callback(std::move(work));
}

CTool::CTool(const std::string& name, const std::string& help)
    : CTool(std::make_unique<CLI::App>(help, name))
{}

CTool::CTool(std::unique_ptr<CLI::App> app) : CCommand(*app), m_app(std::move(app))
{
    m_app->require_subcommand(1);
}

CTool::~CTool() = default;

void refuseOption(const std::string& name, const std::string& why)
{
    throw CLI::ValidationError(name, why);
}

template <class T> bool readNumber(const std::string& text, T& number)
{
    T found{};
    if (!CLI::detail::lexical_cast(text, found))
        return false;
    number = found;
    return true;
}

int runTool(const CTool& tool, std::vector<std::string> arguments, std::ostream& out,
            std::ostream& err, const std::function<int()>& work)
{
    CLI::App& app = tool.App();
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

int runTool(const CTool& tool, int argc, char** argv)
{
    const CToolStreams streams;
    return runTool(tool, toolArguments(argc, argv), std::cout, std::cerr);
}

// The types of values that the tools' options have.
template COption CCommand::AddOption(const std::string&, std::string&, const std::string&) const;
template COption CCommand::AddOption(const std::string&, std::vector<std::string>&,
                                     const std::string&) const;
template COption CCommand::AddOption(const std::string&, int&, const std::string&) const;
template COption CCommand::AddOption(const std::string&, long&, const std::string&) const;
template COption CCommand::AddOption(const std::string&, unsigned&, const std::string&) const;
template COption CCommand::AddOption(const std::string&, unsigned long&, const std::string&) const;
template COption CCommand::AddOption(const std::string&, unsigned long long&,
                                     const std::string&) const;
template COption CCommand::AddOption(const std::string&, std::optional<int>&,
                                     const std::string&) const;
template COption CCommand::AddTaken(const std::string&,
                                    std::function<void(const std::vector<std::string>&)>,
                                    const std::string&) const;
template COption CCommand::AddTaken(const std::string&,
                                    std::function<void(const std::vector<unsigned>&)>,
                                    const std::string&) const;
template bool readNumber(const std::string&, long&);
template bool readNumber(const std::string&, unsigned&);
