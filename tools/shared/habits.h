#pragma once

#include <CLI/CLI.hpp>

// The options that every tool has, whatever it does.

// addHabits adds them to a program whose commands are complete: --quiet, --version and, hidden,
// --completion and --man, which write what is made of the commands' own help. Each also goes after a
// command's name.
void addHabits(CLI::App& app);

// versionText is what --version prints.
std::string versionText(const CLI::App& app);

// addExample shows a command line in the command's help and manual page.
//
// example: as it is typed
void addExample(CLI::App& command, const std::string& example);
