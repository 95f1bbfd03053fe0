#pragma once

#include "shared/exitstatus.h"

#include <stdexcept>
#include <string>

// CToolError ends a tool with one line on standard error: what is wrong, and a hint on what to do
// about it.
class CToolError : public std::runtime_error
{
public:
    // what, hint: UTF-8; names from elsewhere go in as they are, runTool makes the line printable
    explicit CToolError(const std::string& what, const std::string& hint = {},
                        int status = exitStatus::failed)
        : std::runtime_error(hint.empty() ? what : what + " (" + hint + ")"), m_exitStatus(status)
    {}
    int ExitStatus() const noexcept { return m_exitStatus; }

private:
    int m_exitStatus;
};
