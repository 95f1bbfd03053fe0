#include "undocommand.h"

#include "agent/discovery.h"
#include "common/text.h"
#include "formats/text/printable.h"
#include "print.h"
#include "restorereport.h"
#include "safetycopy.h"
#include "shared/terminal.h"
#include "shared/toolerror.h"
#include "undo.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <set>
#include <sstream>

namespace {

void warnOfDamaged(const std::vector<std::wstring>& damaged, const options_t& options)
{
    for (const auto& folder : damaged)
        reportFailure(std::cerr, "vlhost",
                      CToolError("the safety copy in " + utf8FromWide(folder) + " is damaged",
                                 "what is left of its files can be copied by hand",
                                 exitStatus::good),
                      options.json);
}

std::string purposeText(const safetyCopy_t& copy)
{
    std::string text = copy.undoes.empty() ? "before a restore" : "before undoing with copy";
    for (const unsigned number : copy.undoes)
        text += ' ' + std::to_string(number);
    if (!copy.finished)
        text += ", which did not finish";
    if (copy.continues != 0)
        text += "; holds what the work before, after copy " + std::to_string(copy.continues) +
                ", had left unfinished";
    return text;
}

Json::Value jsonOf(const safetyCopy_t& copy, bool next)
{
    Json::Value json(Json::objectValue);
    json["number"] = copy.number;
    json["made"] = copy.made;
    json["files"] = copy.FileCount();
    json["bytes"] = copy.Bytes();
    json["undoes"] = Json::Value(Json::arrayValue);
    for (const unsigned number : copy.undoes)
        json["undoes"].append(number);
    json["finished"] = copy.finished;
    json["continues"] = copy.continues;
    json["next"] = next;
    return json;
}

std::string lineOf(const safetyCopy_t& copy, bool next)
{
    std::ostringstream text;
    text << std::setw(4) << copy.number << "  " << printable(copy.made) << std::setw(7)
         << copy.FileCount() << " files" << std::setw(12) << copy.Bytes() << " bytes  "
         << purposeText(copy) << (next ? " <- put back by --undo" : "") << '\n';
    return text.str();
}

} // namespace

void undoRestore(std::optional<unsigned> number, bool dryRun, const options_t& options)
{
    CSafetyCopies copies;
    std::vector<std::wstring> damaged;
    const std::vector<safetyCopy_t> all = listSafetyCopies(damaged);
    warnOfDamaged(damaged, options);
    CRestoreReport report("vlhost-undo-1", options.json);
    const undoPlan_t plan = planUndo(chooseCopies(all, number));
    report.Text("puts back: safety copy");
    for (const unsigned one : plan.copies)
        report.Text(' ' + std::to_string(one));
    report.Text("\n");
    report.Plan(jsonOfPlan(plan));
    if (dryRun)
        return report.NothingDone();
    std::vector<std::wstring> touched;
    for (const auto& file : plan.files)
        touched.push_back(file.path);
    const unsigned copy = copies.Make(touched, plan.copies);
    report.SafetyCopy(copy);
    const std::vector<difference_t> differences = putBack(plan);
    if (const HWND agent = findAgentWindow())
        PostMessageW(agent, restoreDoneMessage(), 0, 0); // as after a restore by the plug-in
    if (differences.empty())
        finishCopy(copies, copy);
    report["done"] = differences.empty();
    report.Differences(differences);
    report.Print();
    if (!differences.empty())
        throw CToolError("not everything could be put back",
                         "the safety copies are whole: try 'vlhost restore --undo' again");
    report.Text(coloured(std::cout, colour_t::green, "put back") + '\n');
}

void listUndo(const options_t& options)
{
    const CSafetyCopies copies; // takes over the copy of an earlier version
    std::vector<std::wstring> damaged;
    std::vector<safetyCopy_t> all = listSafetyCopies(damaged);
    warnOfDamaged(damaged, options);
    std::set<unsigned> next;
    if (!all.empty())
        for (const safetyCopy_t* const copy : chooseCopies(all, std::nullopt))
            next.insert(copy->number);
    std::reverse(all.begin(), all.end());
    Json::Value json(Json::objectValue);
    json["folder"] = utf8FromWide(safetyCopiesFolder());
    json["copies"] = Json::Value(Json::arrayValue);
    std::string text;
    for (const auto& copy : all) {
        const bool isNext = next.contains(copy.number);
        json["copies"].append(jsonOf(copy, isNext));
        text += lineOf(copy, isNext);
    }
    if (options.json)
        printResult("vlhost-list-undo-1", json, true);
    else
        std::cout << (all.empty() ? "there is no safety copy\n" : text);
}
