#pragma once

#include <string>
#include <vector>

#include <json/value.h>

// checkup_t is the answer to one question about the installation or the user.
struct checkup_t {
    std::string check;
    bool good = true;
    std::string what; // what was found
    std::string mend; // the command that mends it; empty for a good one
};

// examine asks all questions, each whatever the others' answers are. Nothing is changed.
//
// chosen: the plug-in that --plugin names; empty for the registered one. UTF-8
std::vector<checkup_t> examine(const std::string& chosen);

inline constexpr char doctorSchema[] = "vlhost-doctor-1";
Json::Value jsonOf(const std::vector<checkup_t>& checkups); // with the schema

// These are the parts of examine: what is installed, and what this user has.
void examineInstallation(const std::string& chosen, std::vector<checkup_t>& checkups);
void examineUser(const std::string& chosen, std::vector<checkup_t>& checkups);
