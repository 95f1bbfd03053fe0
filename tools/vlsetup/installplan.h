#pragma once

#include "record.h"
#include "setup.h"

#include <string>
#include <vector>

// What an installation will do, decided before its first change.

// wanted_t is one place that an installation fills.
struct wanted_t {
    std::wstring path, name;
    std::wstring source;    // of a file
    std::wstring former;    // where a file that is there goes; empty if it isn't kept
    std::string content;    // to be there afterwards
    bool neighbour = false; // of the plug-in: one that is there stays
    bool replace = false;   // takes the place of what isn't ours, which comes back at the removal
};

// plan_t is all that will happen.
struct plan_t {
    std::vector<wanted_t> files, values; // to be written
    record_t record;                     // with all of them, and what an earlier version left
    std::vector<std::string> left;       // what stays as it is
};

// planInstallation finds out what is to be written, and what stays. It changes nothing.
//
// wanted: with full paths
// before: the record of what is installed there; empty if nothing is
// Errors: CToolError for a package that isn't whole, a place that is taken by what isn't ours, a
//         file in use, or one that can't be read
plan_t planInstallation(const installation_t& wanted, const record_t& before);
