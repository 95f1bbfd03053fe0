#pragma once

#include <string>
#include <vector>

// Installing and removing the product. What is there and isn't ours stays: it is asked about before
// the first change, left and named, or moved aside and put back by the removal.

enum class standIns_t { none, missing, all };

struct installation_t {
    std::wstring from;        // folder of the unpacked package, with files.txt
    std::wstring root;        // the product's folder; the programs go to bin below it
    std::wstring uninstaller; // a file of the package for the list of installed programs; or empty
    standIns_t standIns = standIns_t::missing; // all: also in the place of what is there
    bool replace = false;                      // replaces files of the product that aren't ours
};

// install writes files, registry values and the registration with the dashboard. A second run
// repairs, or takes the place of an older version.
//
// Returns: lines for people: what was left as it was, and why
// Errors:  CToolError. Before the first change nothing is touched; a first installation that fails
//          later is taken back
std::vector<std::string> install(const installation_t& wanted);

// removed_t is the outcome of a removal.
struct removed_t {
    std::vector<std::string> lines; // what was left, and why
    bool complete = true; // false when something of ours couldn't be removed: the record stays
};

// uninstall takes the registration back, so that the plug-in writes its list for a user's data, and
// then removes what the record names, as far as it is still ours.
//
// Errors: CToolError without a record, or for a file that is in use; nothing is touched then
removed_t uninstall(const std::wstring& root);
