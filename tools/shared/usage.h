#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

// usageError says what is wrong with a command line that app refused. A word that is no command is
// named: the parser itself would only say that a command is required.
inline std::string usageError(const CLI::App& app, const CLI::Error& error)
{
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    const std::vector<std::string> words = app.remaining(true);
    if (command->get_require_subcommand_min() == 0 || words.empty())
        return error.what();
    return '"' + words.front() + "\" is no " + (words.front()[0] == '-' ? "option" : "command");
}
