#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// runVlbackup is the program except main.
//
// arguments: UTF-8, without the program's name
// in:        binary; read when a backup is named "-"
// out:       binary; texts are UTF-8 with LF
// err:       one line for a failure, with a hint
// Returns:   the exit status; failed also if verify finds an error, or diff a difference
int runVlbackup(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
                std::ostream& err);
