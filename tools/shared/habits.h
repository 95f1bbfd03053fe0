#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Validator;
} // namespace CLI

// The options that every tool has, whatever it does.

// addHabits adds them to a program whose commands are complete: --color, --quiet, --version and,
// hidden, --completion and --man, which write what is made of the commands' own help. Each also goes after a
// command's name.
void addHabits(CLI::App& app);

// oneOf checks a value: it is one of the words, which completion and manual page then offer.
CLI::Validator oneOf(const std::vector<std::string>& words);

// versionText is what --version prints.
//
// tool: its name
std::string versionText(const std::string& tool);
