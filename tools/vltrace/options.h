#pragma once

#include "filter.h"
#include "lines.h"
#include "shared/commandline.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vltrace {

// options_t is a command line as it was given.
struct options_t {
    std::vector<std::string> files; // and folders
    std::vector<std::string> processes;
    std::vector<std::string> threads;
    std::string levels;
    std::vector<std::string> functions;
    std::vector<std::string> texts;
    std::vector<std::string> patterns;
    bool ignoreCase = false;
    std::string from;
    std::string to;
    std::string output = "-";
    bool force = false;
    bool errors = false;
    bool notes = false;
    bool noMarks = false;
    bool follow = false;
    bool json = false;
    size_t lines = 20;
    std::string order = "total";
    std::string format = "jsonl";
    std::string utcOffset = "+00:00";
};

// Adding options to a command. addShared adds what every command has: filters and output.
void addFiles(const CCommand& command, options_t& options);
void addRuns(const CCommand& command, options_t& options);
void addShared(const CCommand& command, options_t& options);
void addKinds(const CCommand& command, options_t& options);
void addLineOptions(const CCommand& command, options_t& options);
void addTailOptions(const CCommand& command, options_t& options);
void addStatsOptions(const CCommand& command, options_t& options);
void addExportOptions(const CCommand& command, options_t& options);

// What the options mean; for what means nothing they raise a CToolError, or what refuseOption raises.
filter_t filterOf(const options_t& options);
lineOptions_t lineOptionsOf(const options_t& options, const std::ostream& out);
int utcOffsetOf(const options_t& options); // minutes

} // namespace vltrace
