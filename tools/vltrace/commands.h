#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace vltrace {

// runVltrace is the program: it runs one command line.
//
// arguments: UTF-8, without the program's name
// in:        binary; read when a file is named "-"
// out, err:  UTF-8; err gets one line for each failure
// wait:      called between two looks at a file that is followed; false ends the command
// Returns:   the exit status; failed also if only some of the files could be read
int runVltrace(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::function<bool()>& wait);

} // namespace vltrace
