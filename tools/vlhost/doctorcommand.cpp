#include "commands.h"
#include "doctor.h"
#include "formats/text/printable.h"
#include "print.h"
#include "shared/commandline.h"
#include "shared/terminal.h"

#include <algorithm>
#include <iostream>

namespace {

void printLine(const checkup_t& one)
{
    const bool good = one.good;
    if (good && isQuiet())
        return;
    std::cout << (good ? coloured(std::cout, colour_t::green, "good")
                       : coloured(std::cout, colour_t::red, "bad "))
              << "  " << one.check << ": " << printable(one.what) << '\n';
    if (!good)
        std::cout << "      mend: " << one.mend << '\n';
}

void diagnose(const options_t& options)
{
    const std::vector<checkup_t> checkups = examine(options.plugin);
    if (options.json)
        printResult(doctorSchema, jsonOf(checkups), true);
    else
        std::ranges::for_each(checkups, printLine);
    if (const auto bad = std::ranges::count(checkups, false, &checkup_t::good))
        throw CToolError(std::to_string(bad) + " of " + std::to_string(checkups.size()) +
                             " checks are bad",
                         "each has the command that mends it");
}

} // namespace

std::vector<checkup_t> examine(const std::string& chosen)
{
    std::vector<checkup_t> checkups;
    examineInstallation(chosen, checkups);
    examineUser(chosen, checkups);
    return checkups;
}

Json::Value jsonOf(const std::vector<checkup_t>& checkups)
{
    Json::Value json(Json::objectValue);
    json["schema"] = doctorSchema;
    json["good"] = std::ranges::all_of(checkups, &checkup_t::good);
    json["checks"] = Json::Value(Json::arrayValue);
    for (const checkup_t& one : checkups) {
        Json::Value& row = json["checks"].append(Json::objectValue);
        row["check"] = one.check;
        row["good"] = one.good;
        row["what"] = one.what;
        row["mend"] = one.mend;
    }
    return json;
}

void addDoctorCommand(const CCommand& tool, const options_t& options)
{
    const CCommand command = tool.AddCommand(
        "doctor", "Check the installation and what this user has; exit status 1 if one is bad",
        "vlhost doctor");
    command.Do([&options] { diagnose(options); });
}
