#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vltrace {

// source_t is one of the trace files that are read together.
struct source_t {
    std::string name;  // UTF-8, as it was given; "-" is standard input
    std::string shown; // the same for people
    size_t number;     // from 1
    std::optional<uint32_t> process;
    // What marks its lines among those of the others: the process id, or "#" and the number.
    // Empty if it is the only one.
    std::string label;
};

source_t sourceOf(std::string name, size_t number);

// processOf reads the process id out of a stamped file name, which ends in
// ~~session.process.trc3; none if the name has no stamp.
std::optional<uint32_t> processOf(const std::string& name);

// programOf gives the program's name of a stamped file name, as in "host"; of any other the name
// without folder and extension.
std::string programOf(const std::string& name);

// tracesIn lists the traces in a folder, with its name in front, in the order of their names.
//
// Errors: CToolError if the folder can't be listed, or has none
std::vector<std::string> tracesIn(const std::string& folder);

// labelSources gives each source its label.
void labelSources(const std::vector<source_t*>& sources);

} // namespace vltrace
