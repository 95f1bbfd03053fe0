#include "safetycopy.h"

#include <filesystem>
#include <fstream>

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

void writeText(const fs::path& path, const Json::Value& value)
{
    const std::string text = Json::writeString(Json::StreamWriterBuilder(), value);
    writeFile(utf8(path), {text.begin(), text.end()}, true);
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
    if (!reader->parse(text.data(), text.data() + text.size(), &index, nullptr))
        throw CToolError("the safety copy in " + utf8(folder) + " is damaged");
    return index;
}

std::string hexOf(const bytes_t& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (const BYTE byte : bytes) {
        hex += digits[byte / 16];
        hex += digits[byte % 16];
    }
    return hex;
}

bytes_t bytesOfHex(const std::string& hex)
{
    bytes_t bytes(hex.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<BYTE>(std::stoul(hex.substr(2 * i, 2), nullptr, 16));
    return bytes;
}

Json::Value copyFiles(const restorePlan_t& plan, const fs::path& folder)
{
    Json::Value files(Json::arrayValue);
    const auto add = [&](const std::wstring& path) {
        Json::Value file(Json::objectValue);
        file["path"] = utf8FromWide(path);
        if (fs::is_regular_file(path)) {
            const std::string copy = std::to_string(files.size());
            writeFile(utf8(folder / copy), readFile(utf8FromWide(path)), true);
            file["copy"] = copy; // none: it wasn't there, and goes when the restore is undone
        }
        files.append(file);
    };
    for (const auto& path : plan.deleted)
        add(path);
    for (const auto& path : plan.written)
        if (!path.empty() &&
            std::find(plan.deleted.begin(), plan.deleted.end(), path) == plan.deleted.end())
            add(path);
    if (!plan.quickLinkFile.empty() && !fs::exists(plan.quickLinkFile))
        add(plan.quickLinkFile);
    return files;
}

Json::Value copyCategories()
{
    Json::Value list(Json::arrayValue);
    for (const auto& category : readCategories()) {
        Json::Value json(Json::objectValue);
        json["name"] = utf8FromWide(category.name);
        json["type"] = static_cast<Json::UInt>(category.type);
        json["data"] = hexOf(category.data);
        list.append(json);
    }
    return list;
}

void putCategoriesBack(const Json::Value& list)
{
    std::vector<category_t> categories;
    for (const auto& json : list)
        categories.push_back({wideFromUtf8(json["name"].asString()), json["type"].asUInt(),
                              bytesOfHex(json["data"].asString())});
    writeCategories(categories);
}

} // namespace

std::wstring safetyCopyFolder()
{
    const std::wstring root = localappdata_rootdir();
    if (root.empty())
        throw CToolError("the user has no local data folder");
    return root + L"RestoreUndo";
}

void makeSafetyCopy(const CPluginHost& host, const restorePlan_t& plan)
{
    const fs::path target = safetyCopyFolder();
    const fs::path folder = target.wstring() + L".new";
    try {
        fs::remove_all(folder);
        fs::create_directories(folder);
        const backup_t backup = takeBackupIfAny(host);
        if (!backup.bytes.empty())
            writeFile(utf8(folder / backupName), backup.bytes, true);
        Json::Value index(Json::objectValue);
        index["files"] = copyFiles(plan, folder);
        if (plan.categories)
            index["categories"] = copyCategories();
        if (plan.settings)
            for (const auto* key : restoredSettings)
                index["settings"][utf8FromWide(key)] = utf8FromWide(settings_getpath(key));
        writeText(folder / indexName, index);
        fs::remove_all(target);
        fs::rename(folder, target);
    } catch (const fs::filesystem_error& error) {
        throw CToolError(std::string("no safety copy can be made: ") + error.what());
    }
}

Json::Value undoRestore(const CPluginHost& host)
{
    const fs::path folder = safetyCopyFolder();
    const Json::Value index = readIndex(folder);
    if (fs::exists(folder / backupName)) {
        CVariant data;
        setBytes(data, readFile(utf8(folder / backupName)));
        const HRESULT status = host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get());
        if (FAILED(status))
            throw CToolError("the plug-in refused its own backup: " + statusText(status));
    }
    Json::Value result(Json::objectValue);
    result["putBack"] = Json::Value(Json::arrayValue);
    result["removed"] = Json::Value(Json::arrayValue);
    for (const auto& file : index["files"]) {
        const std::string path = file["path"].asString();
        if (file.isMember("copy")) {
            writeFile(path, readFile(utf8(folder / file["copy"].asString())), true);
            result["putBack"].append(path);
        } else if (DeleteFileW(wideFromUtf8(path).c_str())) {
            result["removed"].append(path);
        }
    }
    if (index.isMember("categories"))
        putCategoriesBack(index["categories"]);
    for (const auto& key : index["settings"].getMemberNames())
        settings_set(wideFromUtf8(key), wideFromUtf8(index["settings"][key].asString()));
    result["categories"] = index["categories"].size();
    result["settings"] = index["settings"].size();
    return result;
}
