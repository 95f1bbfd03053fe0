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
        : std::runtime_error(hint.empty() ? what : what + " (" + hint + ")"),
          m_hintSize(hint.size()),
          m_exitStatus(status)
    {}
    // What and Hint are the two parts of the line.
    std::string What() const
    {
        const std::string line = what();
        return m_hintSize == 0 ? line : line.substr(0, line.size() - m_hintSize - 3);
    }
    std::string Hint() const
    {
        const std::string line = what();
        return m_hintSize == 0 ? "" : line.substr(line.size() - m_hintSize - 1, m_hintSize);
    }
    int ExitStatus() const noexcept { return m_exitStatus; }

private:
    size_t m_hintSize;
    int m_exitStatus;
};
