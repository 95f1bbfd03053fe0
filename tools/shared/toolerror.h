#pragma once

#include "shared/exitstatus.h"

#include <ostream>
#include <stdexcept>
#include <string>

// CToolError is one line on standard error: what is wrong, and a hint on what to do about it. Raised,
// it ends the tool.
class CToolError : public std::runtime_error
{
public:
    // what, hint: UTF-8; names from elsewhere go in as they are
    // status:     good for a warning, which is reported but not raised
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

// reportFailure writes the line of a failure or a warning, whatever is in it printable: for people,
// or as the JSON document that docs/schemas/error-1.json describes. With --quiet a warning is none.
void reportFailure(std::ostream& err, const std::string& tool, const CToolError& error,
                   bool asJson);
