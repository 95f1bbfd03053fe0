#include "shared/habits.h"

#include "formats/backup/records.h"
#include "formats/trace/recordformat.h"
#include "shared/commandtree.h"
#include "shared/completion.h"
#include "shared/manpage.h"
#include "shared/terminal.h"

namespace {

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
    passUp(app, app.get_name());
    app.add_flag_callback(
        "-q,--quiet", [] { setQuiet(true); }, "Print only what was asked for, and failures");
    app.set_version_flag(
        "-V,--version", [&app] { return versionText(app); },
        "Print the versions of it and its formats");
    // The parser ends with what such a call carries, as it does for --version.
    app.add_option_function<std::string>(
           "--completion",
           [&app](const std::string& shell) {
               throw CLI::CallForVersion(completionScript(commandTree(app), shell), 0);
           },
           "Print the completion of a shell")
        ->check(CLI::IsMember(completionShells()))
        ->group("");
    app.add_flag_callback(
           "--man",
           [&app] {
               throw CLI::CallForVersion(manualPage(commandTree(app), VL_VERSION, VL_DATE), 0);
           },
           "Print the manual page")
        ->group("");
}

std::string versionText(const CLI::App& app)
{
    return app.get_name() + " " VL_VERSION "\nbackup format " +
           std::to_string(currentBackupElements) + "\ntrace format " +
           tracecore::traceFormatVersion;
}

void addExample(CLI::App& command, const std::string& example)
{
    command.footer("Example:\n  " + example);
}
