#include "restoreplan.h"

#include <algorithm>

#include <json/reader.h>

#include "common/commandline.h"
#include "common/scoped.h"
#include "common/text.h"
#include "storage/settings.h"

namespace {

constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

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

bool isThere(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
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
    const std::vector<category_t> found = readCategories();
    for (const auto& wanted : backup.categories) {
        const std::wstring name = wideFromUtf8(wanted.name);
        const auto match =
            std::find_if(found.begin(), found.end(),
                         [&](const category_t& category) { return category.name == name; });
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

void compareSettings(const CBackupView& backup, std::vector<std::string>& differences)
{
    const auto truth = [](bool value) { return value ? L"1" : L"-1"; };
    if (backup.settings.form == SettingsForm::legacy) {
        compareSetting(restoredSettings[0], truth(backup.settings.showPrompt), differences);
        if (!backup.settings.hotKey.empty())
            compareSetting(restoredSettings[1], wideFromUtf8(backup.settings.hotKey), differences);
        return;
    }
    Json::Value document;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    const std::string& text = backup.settings.document;
    if (!reader->parse(text.data(), text.data() + text.size(), &document, nullptr) ||
        !document.isObject())
        return;
    const Json::Value& current = document["settings"]["current"];
    if (current["show_training_prompt"].isBool())
        compareSetting(restoredSettings[0], truth(current["show_training_prompt"].asBool()),
                       differences);
    if (current["open_guard_desk_qa"].isString() &&
        !current["open_guard_desk_qa"].asString().empty())
        compareSetting(restoredSettings[1], wideFromUtf8(current["open_guard_desk_qa"].asString()),
                       differences);
    if (current["useGrabbingCreds"].isBool())
        compareSetting(restoredSettings[2], truth(current["useGrabbingCreds"].asBool()),
                       differences);
}

} // namespace

restorePlan_t planRestore(const CBackupView& backup)
{
    restorePlan_t plan;
    plan.folder = settings_getpath(L"path_localstorage_dir");
    if (plan.folder.empty())
        throw CToolError("the settings name no personal folder",
                         "is VloSet.dll in the installation's bin folder?");
    plan.quickLinkFile = settings_getpath(L"path_quicklink_filename");
    addMatches(plan.folder, L"*.vlm", plan.deleted);
    addMatches(plan.folder, L"*.vls", plan.deleted);
    if (!plan.quickLinkFile.empty() && isThere(plan.quickLinkFile))
        plan.deleted.push_back(plan.quickLinkFile);
    for (const auto& file : backup.files) {
        const std::wstring target = wideFromUtf8(file.target);
        plan.written.push_back(file.alien || target.empty() ? target : plan.folder + target);
    }
    plan.categories = backup.elementCount >= 3;
    plan.settings = backup.elementCount == 4;
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
    json["quickLinkFile"] = utf8FromWide(plan.quickLinkFile);
    json["replacesCategories"] = plan.categories;
    json["appliesSettings"] = plan.settings;
    return json;
}

std::vector<category_t> readCategories()
{
    std::vector<category_t> categories;
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, categoriesKey, 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return categories;
    for (DWORD index = 0;; ++index) {
        std::wstring name(16384, L'\0');
        auto length = static_cast<DWORD>(name.size());
        category_t category;
        DWORD size = 0;
        const LSTATUS found = RegEnumValueW(key.get(), index, name.data(), &length, nullptr,
                                            &category.type, nullptr, &size);
        if (found != ERROR_SUCCESS)
            return categories;
        category.name = name.substr(0, length);
        category.data.resize(size);
        if (RegQueryValueExW(key.get(), category.name.c_str(), nullptr, nullptr,
                             category.data.data(), &size) == ERROR_SUCCESS)
            categories.push_back(std::move(category));
    }
}

void writeCategories(const std::vector<category_t>& categories)
{
    RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
    CRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, categoriesKey, 0, nullptr, 0, KEY_WRITE, nullptr,
                        key.put(), nullptr) != ERROR_SUCCESS)
        throw CToolError("can't write the categories");
    for (const auto& category : categories)
        RegSetValueExW(key.get(), category.name.c_str(), 0, category.type, category.data.data(),
                       static_cast<DWORD>(category.data.size()));
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
