#include "safetycopy.h"

#include <algorithm>
#include <filesystem>

#include <json/reader.h>
#include <json/writer.h>

#include "common/commandline.h"
#include "common/text.h"
#include "print.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "takebackup.h"
#include "variants.h"

using namespace VLONLINEIDSLib;
namespace fs = std::filesystem;

namespace {

constexpr char indexName[] = "index.json";
constexpr char backupName[] = "backup.vlb";

std::string utf8(const fs::path& path)
{
    return utf8FromWide(path.wstring());
}

Json::Value readIndex(const fs::path& folder)
{
    const fs::path path = folder / indexName;
    if (!fs::exists(path))
        throw CToolError("there is no safety copy in " + utf8(folder), "a restore makes one");
    const bytes_t bytes = readFile(utf8(path));
    const std::string text(bytes.begin(), bytes.end());
    Json::Value index;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &index, nullptr) ||
        !index.isObject() || !index["files"].isArray())
        throw CToolError("the safety copy in " + utf8(folder) + " is damaged",
                         "its files are whole: copy them back by hand");
    return index;
}

bytes_t bytesOfHex(const std::string& hex)
{
    bytes_t bytes(hex.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<BYTE>(std::stoul(hex.substr(2 * i, 2), nullptr, 16));
    return bytes;
}

Json::Value jsonOfValue(const registryValue_t& value)
{
    Json::Value json(Json::objectValue);
    json["name"] = utf8FromWide(value.name);
    json["type"] = static_cast<Json::UInt>(value.type);
    json["data"] = hexText(value.data);
    return json;
}

registryValue_t valueOfJson(const Json::Value& json)
{
    return {wideFromUtf8(json["name"].asString()), json["type"].asUInt(),
            bytesOfHex(json["data"].asString())};
}

// Members are missing for what isn't there, and so is the copy of a file that isn't: when the
// restore is undone, it goes.
Json::Value copyFiles(const std::vector<std::wstring>& paths, const fs::path& folder)
{
    Json::Value files(Json::arrayValue);
    for (const auto& path : paths) {
        Json::Value file(Json::objectValue);
        file["path"] = utf8FromWide(path);
        const DWORD attributes = GetFileAttributesW(longform(path).c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
            const std::string copy = std::to_string(files.size());
            copyFile(path, folder / copy);
            file["copy"] = copy;
            file["attributes"] = static_cast<Json::UInt>(attributes);
        }
        files.append(file);
    }
    return files;
}

Json::Value jsonOfDashboard()
{
    const dashboardState_t state = readDashboard();
    Json::Value json(Json::objectValue);
    if (state.lastCategory)
        json["last"] = jsonOfValue(*state.lastCategory);
    if (state.categories) {
        json["categories"] = Json::Value(Json::arrayValue);
        for (const auto& category : *state.categories)
            json["categories"].append(jsonOfValue(category));
    }
    return json;
}

dashboardState_t dashboardOfJson(const Json::Value& json)
{
    dashboardState_t state;
    if (json.isMember("last"))
        state.lastCategory = valueOfJson(json["last"]);
    if (json.isMember("categories"))
        for (auto& categories = state.categories.emplace(); const auto& one : json["categories"])
            categories.push_back(valueOfJson(one));
    return state;
}

Json::Value jsonOfSettings()
{
    Json::Value json(Json::objectValue);
    for (const auto* key : restoredSettings) {
        std::wstring value;
        if (SUCCEEDED(settings_query(key, value)))
            json[utf8FromWide(key)] = utf8FromWide(value);
    }
    return json;
}

// copyState makes a whole copy beside its final place.
fs::path copyState(const CPluginHost& host, std::vector<std::wstring> paths)
{
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    paths.erase(std::remove(paths.begin(), paths.end(), std::wstring()), paths.end());
    fs::path folder = safetyCopyFolder() + L".new";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const bytes_t backup = takeBackupIfAny(host);
    if (!backup.empty())
        writeFile(utf8(folder / backupName), backup, true);
    Json::Value index(Json::objectValue);
    index["folder"] = utf8FromWide(personalFolder());
    index["files"] = copyFiles(paths, folder);
    index["dashboard"] = jsonOfDashboard();
    index["settings"] = jsonOfSettings();
    const std::string text = Json::writeString(Json::StreamWriterBuilder(), index);
    writeFile(utf8(folder / indexName), {text.begin(), text.end()}, true);
    return folder;
}

void replaceCopy(const fs::path& made)
{
    const fs::path target = safetyCopyFolder();
    const fs::path old = target.wstring() + L".old";
    fs::remove_all(old);
    if (fs::exists(target))
        fs::rename(target, old);
    fs::rename(made, target);
    fs::remove_all(old);
}

// filesNow lists what a restore of the copy deletes or writes, by full path.
std::vector<std::wstring> filesNow(const Json::Value& index)
{
    std::vector<std::wstring> paths =
        deletedByRestore(personalFolder(), settings_getpath(L"path_quicklink_filename"));
    for (const auto& file : index["files"])
        paths.push_back(wideFromUtf8(file["path"].asString()));
    return paths;
}

void putThroughPlugin(const CPluginHost& host, const fs::path& backup)
{
    CVariant data;
    setBytes(data, readFile(utf8(backup)));
    const HRESULT status = host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get());
    if (FAILED(status))
        throw CToolError("the plug-in refused its own backup: " + statusText(status));
}

void putFilesBack(const Json::Value& index, const fs::path& folder,
                  const std::vector<std::wstring>& now)
{
    for (const auto& path : now)
        if (isThere(path) && !DeleteFileW(longform(path).c_str())) {
            SetFileAttributesW(longform(path).c_str(), FILE_ATTRIBUTE_NORMAL); // read-only, perhaps
            DeleteFileW(longform(path).c_str());
        }
    for (const auto& file : index["files"]) {
        if (!file.isMember("copy"))
            continue;
        const std::wstring path = wideFromUtf8(file["path"].asString());
        copyFile(folder / file["copy"].asString(), path);
        SetFileAttributesW(longform(path).c_str(), file["attributes"].asUInt());
    }
}

void putSettingsBack(const Json::Value& settings)
{
    for (const auto& key : settings.getMemberNames()) {
        const HRESULT status =
            settings_set(wideFromUtf8(key), wideFromUtf8(settings[key].asString()));
        if (FAILED(status))
            throw CToolError("the setting '" + key + "' can't be put back: " + statusText(status));
    }
}

// planUndo tells what comes back and what goes.
Json::Value planUndo(const Json::Value& index, const std::vector<std::wstring>& now)
{
    Json::Value result(Json::objectValue);
    Json::Value& back = result["putBack"] = Json::Value(Json::arrayValue);
    Json::Value& removed = result["removed"] = Json::Value(Json::arrayValue);
    std::vector<std::string> kept;
    for (const auto& file : index["files"])
        if (file.isMember("copy")) {
            back.append(file["path"]);
            kept.push_back(file["path"].asString());
        }
    for (const auto& path : now) {
        const std::string name = utf8FromWide(path);
        if (isThere(path) && std::find(kept.begin(), kept.end(), name) == kept.end()) {
            removed.append(name);
            kept.push_back(name); // once
        }
    }
    result["categories"] = index["dashboard"]["categories"].size();
    result["settings"] = index["settings"];
    return result;
}

} // namespace

std::wstring safetyCopyFolder()
{
    const std::wstring root = localappdata_rootdir();
    if (root.empty())
        throw CToolError("the user has no local data folder", "is LOCALAPPDATA set?");
    return root + L"RestoreUndo";
}

void makeSafetyCopy(const CPluginHost& host, const restorePlan_t& plan)
try {
    std::vector<std::wstring> paths = plan.deleted;
    paths.insert(paths.end(), plan.written.begin(), plan.written.end());
    paths.push_back(plan.quickLinkFile);
    paths.push_back(plan.listFile);
    replaceCopy(copyState(host, std::move(paths)));
} catch (const fs::filesystem_error& error) {
    throw CToolError(std::string("no safety copy can be made: ") + error.what(),
                     "nothing was touched");
}

Json::Value undoRestore(const CPluginHost& host, bool dryRun)
try {
    const fs::path folder = safetyCopyFolder();
    const Json::Value index = readIndex(folder);
    const std::string now = utf8FromWide(personalFolder());
    if (index["folder"] != now)
        throw CToolError("the safety copy is of the personal folder " + index["folder"].asString() +
                             ", which is " + now + " now",
                         "nothing was touched; set path_localstorage_dir back first");
    const std::vector<std::wstring> paths = filesNow(index);
    Json::Value result = planUndo(index, paths);
    if (dryRun)
        return result;
    const fs::path made = copyState(host, paths);
    if (fs::exists(folder / backupName))
        putThroughPlugin(host, folder / backupName);
    putFilesBack(index, folder, paths);
    writeDashboard(dashboardOfJson(index["dashboard"]));
    putSettingsBack(index["settings"]);
    replaceCopy(made);
    return result;
} catch (const fs::filesystem_error& error) {
    throw CToolError(std::string("the safety copy can't be put back: ") + error.what(),
                     "it stays where it is: try again");
} catch (const Json::Exception& error) {
    throw CToolError(std::string("the safety copy is damaged: ") + error.what(),
                     "its files are whole: copy them back by hand");
}
