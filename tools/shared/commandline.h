#pragma once

#include "shared/toolerror.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

// runTool is the frame of every tool: it parses the arguments, runs the chosen command's callback
// and then work, and reports whatever failure they raise in one printable line on err.
//
// arguments: UTF-8, without the program's name
// out:       UTF-8, or bytes as they are; flushed at the end
// work:      what remains to be done after parsing; gives the exit status
// Returns:   the exit status: work's or good; failed; wrongUsage; or that of a CToolError
int runTool(CLI::App& app, std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
            const std::function<int()>& work = {});

// The same on the process's own streams and arguments, which on Windows come from the wide command
// line.
int runTool(CLI::App& app, int argc, char** argv);
