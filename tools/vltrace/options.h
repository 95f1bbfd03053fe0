#pragma once

#include "filter.h"
#include "lines.h"

#include <cstddef>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

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
void addFiles(CLI::App& command, options_t& options);
void addRuns(CLI::App& command, options_t& options);
void addShared(CLI::App& command, options_t& options);
void addKinds(CLI::App& command, options_t& options);
void addLineOptions(CLI::App& command, options_t& options);
void addTailOptions(CLI::App& command, options_t& options);
void addStatsOptions(CLI::App& command, options_t& options);
void addExportOptions(CLI::App& command, options_t& options);

// What the options mean; they raise a CLI::ValidationError or a CToolError for what means nothing.
filter_t filterOf(const options_t& options);
lineOptions_t lineOptionsOf(const options_t& options, const std::ostream& out);
int utcOffsetOf(const options_t& options); // minutes

} // namespace vltrace
