#pragma once

#include "shared/commandtree.h"

// completionShells lists the shells there is a completion for.
std::vector<std::string> completionShells();

// completionScript writes what a shell reads to complete the program's commands, options and values;
// where a file's name may stand, it leaves that to the shell.
//
// shell: one of completionShells
std::string completionScript(const std::vector<command_t>& tree, const std::string& shell);
