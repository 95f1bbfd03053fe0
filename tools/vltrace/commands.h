#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace vltrace {

// runVltrace is the program: it runs one command line.
//
// arguments: UTF-8, without the program's name
// out, err:  UTF-8; err gets one line for each failure
// wait:      called between two looks at a file that is followed; false ends the command
// Returns:   the exit status: 0; 1 for a file that can't be read or written, or holds no trace;
//            2 for a wrong command line
int runVltrace(std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
               const std::function<bool()>& wait);

} // namespace vltrace
