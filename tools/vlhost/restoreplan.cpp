#include "restoreplan.h"

#include "common/scoped.h"
#include "common/text.h"
#include "files.h"
#include "formats/backup/documentsettings.h"
#include "formats/text/pathpart.h"
#include "shared/backupinput.h"
#include "shared/progress.h"
#include "shared/toolerror.h"
#include "storage/folderlist.h"
#include "storage/paths.h"
#include "storage/settings.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace {

// The plug-in's own mask also finds names that only begin with the extension; it deletes those too.
void addMatches(const std::wstring& folder, const wchar_t* mask, std::vector<std::wstring>& found)
{
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW((folder + mask).c_str(), &entry));
    if (!search)
        return;
    do {
        if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            found.push_back(folder + entry.cFileName);
    } while (FindNextFileW(search.get(), &entry));
}

void compareFiles(const CBackupView& backup, const restorePlan_t& plan,
                  std::vector<difference_t>& differences)
{
    CProgress progress("comparing", plan.files.size());
    for (const auto& file : plan.files) {
        progress.Step();
        const char* what = nullptr;
        if (file.action == fileAction_t::remove)
            what = isThere(file.path) ? "was not deleted (is it read-only?)" : nullptr;
        else if (!fileHolds(file.path, backup.files[file.source].content))
            what = isThere(file.path) ? "holds other bytes"
                   : isThere(std::wstring(folderPart(file.path)))
                       ? "was not written"
                       : "was not written: its folder is missing, and a restore makes none";
        if (what)
            differences.push_back({utf8FromWide(file.path), what});
    }
}

void compareCategories(const CBackupView& backup, std::vector<difference_t>& differences)
{
    std::map<std::wstring, bytes_t> found;
    for (auto& category : readDashboard().categories.value_or(std::vector<registryValue_t>()))
        found.emplace(std::move(category.name), std::move(category.data));
    for (const auto& wanted : backup.categories) {
        const auto match = found.find(wideFromUtf8(wanted.name));
        if (match == found.end())
            differences.push_back({wanted.name, "the category is missing"});
        else if (match->second != bytesOfText(wideFromUtf8(wanted.text)))
            differences.push_back({wanted.name, "the category has another text"});
    }
}

void compareSetting(std::string_view name, const std::wstring& wanted,
                    std::vector<difference_t>& differences)
{
    std::wstring value;
    if (FAILED(settings_query(wideFromUtf8(name), value)) || value != wanted)
        differences.push_back({std::string(name), "the setting is not as in the backup"});
}

// currentSettings gives the part of the document that a restore reads; an empty object for a
// document that it can't.
Json::Value currentSettings(const std::string& text)
{
    Json::Value value = parseDocument(text).value_or(Json::objectValue);
    for (const char* member : {"settings", "current"}) {
        if (!value.isObject())
            return Json::objectValue;
        Json::Value inner = value[member];
        value.swap(inner);
    }
    return value.isObject() ? value : Json::objectValue;
}

void compareSettings(const CBackupView& backup, std::vector<difference_t>& differences)
{
    const auto truth = [](bool value) { return value ? L"1" : L"-1"; };
    if (backup.settings.form == SettingsForm::legacy) {
        compareSetting("show_training_prompt", truth(backup.settings.showPrompt), differences);
        if (!backup.settings.hotKey.empty())
            compareSetting("open_guard_desk_qa", wideFromUtf8(backup.settings.hotKey), differences);
        return;
    }
    const Json::Value current = currentSettings(backup.settings.document);
    using Kind = DocumentSetting::Kind;
    for (const auto& [name, kind] : documentSettings) {
        const Json::Value& member = current[std::string(name)];
        if (kind == Kind::flag && (member.isBool() || member.isNumeric()))
            compareSetting(name, truth(member.asBool()), differences);
        else if (kind == Kind::text && member.isString() && !member.asString().empty())
            compareSetting(name, wideFromUtf8(member.asString()), differences);
    }
}

constexpr const char* actionNames[] = {"add", "change", "same", "delete"}; // of fileAction_t

} // namespace

std::wstring personalFolder()
{
    std::wstring folder = settings_getpath(L"path_localstorage_dir");
    if (folder.empty())
        throw CToolError("the settings name no personal folder",
                         "is VloSet.dll in the installation's bin folder?");
    return folder;
}

std::vector<std::string> straysOf(const CBackupView& backup)
{
    FolderSet folders;
    prepfolderlist(folders);
    std::vector<std::string> names;
    for (const auto& folder : folders)
        names.push_back(utf8FromWide(folder.path));
    std::vector<std::string> strays;
    for (const BackupFile& file : backup.MarkedOutside(names))
        strays.push_back(file.target);
    return strays;
}

std::vector<std::wstring> deletedByRestore(const std::wstring& folder,
                                           const std::wstring& quickLinkFile)
{
    std::vector<std::wstring> found;
    addMatches(folder, L"*.vlm", found);
    addMatches(folder, L"*.vls", found);
    if (!quickLinkFile.empty() && isThere(quickLinkFile))
        found.push_back(quickLinkFile);
    return found;
}

std::vector<std::wstring> restorePlan_t::Touched() const
{
    std::vector<std::wstring> paths;
    for (const auto& file : files)
        paths.push_back(file.path);
    for (const auto& path : {quickLinkFile, listFile})
        if (!path.empty())
            paths.push_back(path);
    return paths;
}

restorePlan_t planRestore(const CBackupView& backup)
{
    restorePlan_t plan;
    plan.folder = personalFolder();
    plan.quickLinkFile = settings_getpath(L"path_quicklink_filename");
    std::unordered_map<std::wstring, size_t> places; // of the paths, in plan.files
    for (size_t i = 0; i < backup.files.size(); ++i) {
        const auto& file = backup.files[i];
        const std::wstring target = wideFromUtf8(file.target);
        if (target.empty())
            continue;
        const std::wstring path = file.alien ? target : plan.folder + target;
        const std::wstring key = fileKey(path);
        const auto [place, isNew] = places.emplace(key, plan.files.size());
        if (isNew)
            plan.files.push_back({path});
        plannedFile_t& planned = plan.files[place->second];
        planned.action = fileHolds(path, file.content) ? fileAction_t::same
                         : isThere(path)               ? fileAction_t::change
                                                       : fileAction_t::add;
        planned.bytes = file.content.size();
        planned.source = i;
    }
    for (const auto& path : deletedByRestore(plan.folder, L""))
        if (places.emplace(fileKey(path), 0).second)
            plan.files.push_back(
                {path, fileAction_t::remove, fileAt(path).value_or(fileState_t()).size});
    plan.strays = straysOf(backup);
    const BackupVersion version = versionOf(backup.elementCount);
    plan.categories = version.categories;
    plan.settings = version.settings;
    if (plan.settings && !backup.settings.dontPromptList.empty())
        plan.listFile = settings_getpath(L"path_dontpromptlist_filename");
    return plan;
}

Json::Value jsonOfFiles(const std::vector<plannedFile_t>& files)
{
    Json::Value list(Json::arrayValue);
    for (const auto& file : files) {
        Json::Value one(Json::objectValue);
        one["action"] = actionNames[static_cast<size_t>(file.action)];
        one["bytes"] = file.bytes;
        one["path"] = utf8FromWide(file.path);
        list.append(std::move(one));
    }
    return list;
}

Json::Value jsonOfPlan(const restorePlan_t& plan, const CBackupView& backup)
{
    const auto ofFile = [](const std::wstring& path, bool written) {
        const bool there = isThere(path);
        Json::Value json(Json::objectValue);
        json["path"] = utf8FromWide(path);
        json["action"] = !written ? (there ? "delete" : "none") : (there ? "change" : "add");
        return json;
    };
    Json::Value json(Json::objectValue);
    json["files"] = jsonOfFiles(plan.files);
    json["quickLinks"] = ofFile(plan.quickLinkFile, !backup.links.empty());
    json["quickLinks"]["count"] = backup.links.size();
    if (!plan.listFile.empty())
        json["doNotPromptList"] = ofFile(plan.listFile, true);
    if (plan.categories) {
        const auto now = readDashboard().categories;
        json["categories"]["count"] = backup.categories.size();
        json["categories"]["now"] = now ? now->size() : 0;
    }
    json["appliesSettings"] = plan.settings;
    return json;
}

std::vector<difference_t> compareRestored(const CBackupView& backup, const restorePlan_t& plan)
{
    std::vector<difference_t> differences;
    compareFiles(backup, plan, differences);
    if (plan.categories)
        compareCategories(backup, differences);
    if (plan.settings)
        compareSettings(backup, differences);
    return differences;
}
