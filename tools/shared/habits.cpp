#include "shared/habits.h"

#include "formats/backup/records.h"
#include "formats/trace/recordformat.h"
#include "shared/commandtree.h"
#include "shared/completion.h"
#include "shared/manpage.h"
#include "shared/terminal.h"

#include <algorithm>
#include <iterator>

#include <CLI/CLI.hpp>

namespace {

const std::vector<std::string> colourings = {"auto", "always", "never"}; // as in colouring_t

// Every command takes them too, which the parser asks of each, but lists in the help of the program
// alone.
void passUp(CLI::App& command, const std::string& program)
{
    command.fallthrough();
    for (CLI::App* const inner : command.get_subcommands({})) {
        inner->footer(inner->get_footer() + "\nOptions of every command: see " + program +
                      " --help");
        passUp(*inner, program);
    }
}

} // namespace

void addHabits(CLI::App& app)
{
    setQuiet(false);
    setColouring(colouring_t::automatic);
    passUp(app, app.get_name());
    // Taken while the rest is read, so that it holds for what is wrong there, too.
    app.add_option_function<std::string>(
           "--color",
           [](const std::string& word) {
               const auto at = std::ranges::find(colourings, word) - colourings.begin();
               setColouring(static_cast<colouring_t>(at));
           },
           "When to use colours; auto: on a terminal, unless NO_COLOR is set")
        ->check(oneOf(colourings))
        ->default_str("auto")
        ->trigger_on_parse();
    app.add_flag_callback(
        "-q,--quiet", [] { setQuiet(true); }, "Print only what was asked for, and failures");
    app.set_version_flag(
        "-V,--version", [&app] { return versionText(app.get_name()); },
        "Print the versions of it and its formats");
    // The parser ends with what such a call carries, as it does for --version.
    app.add_option_function<std::string>(
           "--completion",
           [&app](const std::string& shell) {
               throw CLI::CallForVersion(completionScript(commandTree(app), shell), 0);
           },
           "Print the completion of a shell")
        ->check(oneOf(completionShells()))
        ->group("");
    app.add_flag_callback(
           "--man",
           [&app] {
               throw CLI::CallForVersion(manualPage(commandTree(app), VL_VERSION, VL_DATE), 0);
           },
           "Print the manual page")
        ->group("");
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    std::string listed;
    for (const std::string& word : words)
        listed += (listed.empty() ? "" : ",") + word;
    return {[words](const std::string& value) {
                std::string fault = '"' + value + "\" is none of";
                for (const std::string& word : words) {
                    if (value == word)
                        return std::string();
                    fault += (word == words.front() ? " " : ", ") + word;
                }
                return fault;
            },
            '{' + listed + '}'};
}

std::string versionText(const std::string& tool)
{
    return tool + " " VL_VERSION "\nbackup format " + std::to_string(currentBackupElements) +
           "\ntrace format " + tracecore::traceFormatVersion;
}
