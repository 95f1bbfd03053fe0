#include "undo.h"

#include "common/text.h"
#include "shared/filesystem.h"
#include "shared/progress.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/paths.h"
#include "storage/settings.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

namespace {

// The plug-in takes a file's attributes away; only those that a user sets are put back.
constexpr DWORD settableAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                     FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                     FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

bool isAsCopied(const copiedFile_t& file)
{
    const auto now = fileAt(file.path);
    return now &&
           (now->attributes & settableAttributes) == (file.state.attributes & settableAttributes) &&
           fileEquals(file.path, *file.copy);
}

// eachFile does step with every file, and notes which fail.
void eachFile(const char* what, const std::vector<plannedFile_t>& files,
              std::vector<difference_t>& failures,
              const std::function<void(const plannedFile_t&)>& step)
{
    CProgress progress(what, files.size());
    for (const auto& file : files) {
        progress.Step();
        try {
            step(file);
        } catch (const CToolError& error) {
            failures.push_back({utf8FromWide(file.path), error.what()});
        }
    }
}

} // namespace

std::vector<const safetyCopy_t*> chooseCopies(const std::vector<safetyCopy_t>& all,
                                              std::optional<unsigned> number)
{
    if (all.empty())
        throw CToolError("there is no safety copy in " + utf8FromWide(safetyCopiesFolder()),
                         "a restore makes one");
    std::vector<const safetyCopy_t*> chosen;
    const auto choose = [&](unsigned wanted) {
        for (const auto& copy : all)
            if (copy.number == wanted)
                chosen.push_back(&copy);
    };
    if (number) {
        choose(*number);
        if (chosen.empty())
            throw CToolError("there is no safety copy " + std::to_string(*number),
                             "'vlhost restore --list-undo' lists them");
        return chosen;
    }
    const safetyCopy_t& newest = all.back();
    if (!newest.finished)
        std::for_each(newest.undoes.begin(), newest.undoes.end(), choose);
    if (!chosen.empty())
        return chosen; // to be brought to its end
    // Back to the state before the first of the tries, unless that is what an undoing put back.
    unsigned wanted = newest.number;
    for (auto copy = all.rbegin(); copy != all.rend(); ++copy) {
        if (copy->number != wanted)
            continue;
        chosen.push_back(&*copy);
        wanted = std::find(copy->undoes.begin(), copy->undoes.end(), copy->continues) ==
                         copy->undoes.end()
                     ? copy->continues
                     : 0;
    }
    std::reverse(chosen.begin(), chosen.end());
    return chosen;
}

undoPlan_t planUndo(const std::vector<const safetyCopy_t*>& copies)
{
    undoPlan_t plan;
    plan.folder = copies.front()->folder;
    plan.dashboard = copies.front()->dashboard;
    plan.settings = copies.front()->settings;
    const std::wstring folder = personalFolder();
    if (plan.folder != utf8FromWide(folder))
        throw CToolError("the safety copy is of the personal folder " + plan.folder +
                             ", which is " + utf8FromWide(folder) + " now",
                         "nothing was touched; set path_localstorage_dir back first");
    std::unordered_map<std::wstring, size_t> known;
    const auto remove = [&](const std::wstring& path) {
        if (const auto now = fileAt(path))
            plan.files.push_back({path, fileAction_t::remove, now->size});
    };
    std::vector<std::wstring> gone;
    for (const safetyCopy_t* const copy : copies) {
        plan.copies.push_back(copy->number);
        for (const auto& file : copy->files) {
            if (!known.emplace(fileKey(file.path), 0).second)
                continue;
            if (!file.copy) {
                gone.push_back(file.path);
                continue;
            }
            const fileAction_t action = !isThere(file.path) ? fileAction_t::add
                                        : isAsCopied(file)  ? fileAction_t::same
                                                            : fileAction_t::change;
            plan.files.push_back({file.path, action, file.state.size, plan.sources.size()});
            plan.sources.push_back(file);
        }
    }
    std::for_each(gone.begin(), gone.end(), remove);
    for (const auto& path : deletedByRestore(folder, settings_getpath(L"path_quicklink_filename")))
        if (known.emplace(fileKey(path), 0).second)
            remove(path);
    return plan;
}

Json::Value jsonOfPlan(const undoPlan_t& plan)
{
    Json::Value json(Json::objectValue);
    for (const unsigned number : plan.copies)
        json["copies"].append(number);
    json["files"] = jsonOfFiles(plan.files);
    const auto now = readDashboard().categories;
    json["categories"]["count"] = plan.dashboard.categories ? plan.dashboard.categories->size() : 0;
    json["categories"]["now"] = now ? now->size() : 0;
    json["settings"] = Json::Value(Json::objectValue);
    for (const auto& setting : plan.settings)
        json["settings"][utf8FromWide(setting.key)] = utf8FromWide(setting.value);
    return json;
}

std::vector<difference_t> putBack(const undoPlan_t& plan)
{
    std::vector<difference_t> failures;
    eachFile("putting back", plan.files, failures, [&](const plannedFile_t& file) {
        if (file.action == fileAction_t::add || file.action == fileAction_t::change)
            copyOver(*plan.sources[file.source].copy, file.path);
        else if (file.action != fileAction_t::remove)
            return;
        else if (const std::error_code error = removeFile(longform(file.path)))
            throw CToolError("can't be deleted: " + errorText(static_cast<DWORD>(error.value())));
    });
    eachFile("writing to the disk", plan.files, failures, [&](const plannedFile_t& file) {
        if (file.action == fileAction_t::add || file.action == fileAction_t::change)
            settleFile(file.path, plan.sources[file.source].state.attributes & settableAttributes);
    });
    writeDashboard(plan.dashboard);
    for (const auto& setting : plan.settings) {
        const HRESULT status = settings_set(setting.key, setting.value);
        if (FAILED(status))
            failures.push_back({utf8FromWide(setting.key),
                                "the setting can't be put back: " + statusText(status)});
    }
    return failures;
}

void finishCopy(CSafetyCopies& copies, unsigned number)
{
    copies.Finish(number);
    if (!copies.IsPruneDue())
        return;
    std::vector<std::wstring> damaged;
    const std::vector<safetyCopy_t> all = listSafetyCopies(damaged);
    copies.Prune(all, chooseCopies(all, std::nullopt).front()->number);
}
