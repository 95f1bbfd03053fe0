#pragma once

#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

// What the command line tools share.

// CToolError ends a tool with one line on standard error: what is wrong, and a hint what to do
// about it.
class CToolError : public std::runtime_error
{
public:
    explicit CToolError(const std::string& what, const std::string& hint = {}, int exitStatus = 1)
        : std::runtime_error(hint.empty() ? what : what + " (" + hint + ")"),
          m_exitStatus(exitStatus)
    {}
    int ExitStatus() const noexcept { return m_exitStatus; }

private:
    int m_exitStatus;
};

// runTool parses the arguments and runs the chosen command's callback. Arguments are UTF-8 (on
// Windows from the wide command line), and so is what is printed; standard output takes bytes as
// they are.
//
// Returns: the exit status: 0, 1 for a failure, 2 for wrong usage, or that of a CToolError
int runTool(CLI::App& app, int argc, char** argv);
