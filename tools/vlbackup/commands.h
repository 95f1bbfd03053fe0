#pragma once

#include <iosfwd>
#include <string>
#include <vector>

// runVlbackup is the program but for main.
//
// arguments: UTF-8, without the program's name
// in:        binary; read when a backup is named "-"
// out:       binary; texts are UTF-8 with LF
// err:       one line for a failure, with a hint
// Returns:   the exit status: 0 done, sound or equal; 1 verify found something amiss or diff a
//            difference; 2 the arguments are wrong, a file can't be read or the output written, or
//            the bytes are no backup
int runVlbackup(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
                std::ostream& err);
