#include "restoreplan.h"

#include <algorithm>

#include <json/reader.h>

#include "common/commandline.h"
#include "common/scoped.h"
#include "common/text.h"
#include "storage/settings.h"

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

bytes_t bytesOfText(const std::string& utf8)
{
    const std::wstring text = wideFromUtf8(utf8);
    const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
    return {first, first + (text.size() + 1) * sizeof(wchar_t)};
}

void compareFiles(const CBackupView& backup, const restorePlan_t& plan,
                  std::vector<std::string>& differences)
{
    for (const auto& path : plan.deleted)
        if (path != plan.quickLinkFile && isThere(path) &&
            std::find(plan.written.begin(), plan.written.end(), path) == plan.written.end())
            differences.push_back(utf8FromWide(path) + " was not deleted (is it read-only?)");
    // A later file of the same target stands in the folder.
    for (size_t i = 0; i < backup.files.size(); ++i) {
        const auto& path = plan.written[i];
        if (path.empty() || std::find(plan.written.begin() + static_cast<ptrdiff_t>(i) + 1,
                                      plan.written.end(), path) != plan.written.end())
            continue;
        const std::string name = utf8FromWide(path);
        if (!isThere(path)) {
            differences.push_back(name + " was not written");
            continue;
        }
        const bytes_t bytes = readFile(name);
        const auto& wanted = backup.files[i].content;
        if (!std::equal(bytes.begin(), bytes.end(), wanted.begin(), wanted.end()))
            differences.push_back(name + " holds other bytes");
    }
}

void compareCategories(const CBackupView& backup, std::vector<std::string>& differences)
{
    const auto found = readDashboard().categories.value_or(std::vector<registryValue_t>());
    for (const auto& wanted : backup.categories) {
        const std::wstring name = wideFromUtf8(wanted.name);
        const auto match =
            std::find_if(found.begin(), found.end(),
                         [&](const registryValue_t& category) { return category.name == name; });
        if (match == found.end())
            differences.push_back("the category '" + wanted.name + "' is missing");
        else if (match->data != bytesOfText(wanted.text))
            differences.push_back("the category '" + wanted.name + "' has another text");
    }
}

void compareSetting(const wchar_t* key, const std::wstring& wanted,
                    std::vector<std::string>& differences)
{
    std::wstring value;
    if (FAILED(settings_query(key, value)) || value != wanted)
        differences.push_back("the setting '" + utf8FromWide(key) + "' is not as in the backup");
}

// documentSettings gives the part of the document that a restore reads; an empty object for a
// document that it can't.
Json::Value documentSettings(const std::string& text)
{
    Json::Value value;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &value, nullptr))
        return Json::objectValue;
    for (const char* member : {"settings", "current"}) {
        if (!value.isObject())
            return Json::objectValue;
        Json::Value inner = value[member];
        value.swap(inner);
    }
    return value.isObject() ? value : Json::objectValue;
}

void compareSettings(const CBackupView& backup, std::vector<std::string>& differences)
{
    const auto truth = [](bool value) { return value ? L"1" : L"-1"; };
    if (backup.settings.form == SettingsForm::legacy) {
        compareSetting(restoredSettings[0], truth(backup.settings.showPrompt), differences);
        if (!backup.settings.hotKey.empty())
            compareSetting(restoredSettings[1], wideFromUtf8(backup.settings.hotKey), differences);
        return;
    }
    const Json::Value current = documentSettings(backup.settings.document);
    const Json::Value& prompt = current["show_training_prompt"];
    if (prompt.isBool() || prompt.isNumeric())
        compareSetting(restoredSettings[0], truth(prompt.asBool()), differences);
    const Json::Value& hotKey = current["open_guard_desk_qa"];
    if (hotKey.isString() && !hotKey.asString().empty())
        compareSetting(restoredSettings[1], wideFromUtf8(hotKey.asString()), differences);
    const Json::Value& grabbing = current["useGrabbingCreds"];
    if (grabbing.isBool() || grabbing.isNumeric())
        compareSetting(restoredSettings[2], truth(grabbing.asBool()), differences);
}

} // namespace

std::wstring personalFolder()
{
    std::wstring folder = settings_getpath(L"path_localstorage_dir");
    if (folder.empty())
        throw CToolError("the settings name no personal folder",
                         "is VloSet.dll in the installation's bin folder?");
    return folder;
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

restorePlan_t planRestore(const CBackupView& backup)
{
    restorePlan_t plan;
    plan.folder = personalFolder();
    plan.quickLinkFile = settings_getpath(L"path_quicklink_filename");
    plan.deleted = deletedByRestore(plan.folder, plan.quickLinkFile);
    for (const auto& file : backup.files) {
        const std::wstring target = wideFromUtf8(file.target);
        plan.written.push_back(file.alien || target.empty() ? target : plan.folder + target);
    }
    plan.categories = backup.elementCount >= 3;
    plan.settings = backup.elementCount == 4;
    if (plan.settings && !backup.settings.dontPromptList.empty())
        plan.listFile = settings_getpath(L"path_dontpromptlist_filename");
    return plan;
}

Json::Value jsonOfPlan(const restorePlan_t& plan)
{
    Json::Value json(Json::objectValue);
    json["deletes"] = Json::Value(Json::arrayValue);
    for (const auto& path : plan.deleted)
        json["deletes"].append(utf8FromWide(path));
    json["writes"] = Json::Value(Json::arrayValue);
    for (const auto& path : plan.written)
        if (!path.empty())
            json["writes"].append(utf8FromWide(path) + (isThere(path) ? " (is there now)" : ""));
    if (!plan.listFile.empty())
        json["writes"].append(utf8FromWide(plan.listFile));
    json["quickLinkFile"] = utf8FromWide(plan.quickLinkFile);
    json["replacesCategories"] = plan.categories;
    json["appliesSettings"] = plan.settings;
    return json;
}

std::vector<std::string> compareRestored(const CBackupView& backup, const restorePlan_t& plan)
{
    std::vector<std::string> differences;
    compareFiles(backup, plan, differences);
    if (plan.categories)
        compareCategories(backup, differences);
    if (plan.settings)
        compareSettings(backup, differences);
    return differences;
}
