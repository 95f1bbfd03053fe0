#include "copyindex.h"

#include "common/text.h"
#include "shared/hextext.h"
#include "shared/inputfile.h"
#include "shared/jsontext.h"
#include "shared/outputfile.h"
#include "shared/toolerror.h"

#include <ctime>
#include <iostream>
#include <memory>

#include <json/reader.h>

namespace fs = std::filesystem;

namespace {

constexpr wchar_t indexName[] = L"index.json";
constexpr wchar_t finishedName[] = L"finished";

std::string utf8(const fs::path& path)
{
    return utf8FromWide(path.wstring());
}

void writeText(const fs::path& path, const std::string& text)
{
    COutputFile file(utf8(path), true, {}, std::cout);
    file.Stream() << text;
    file.Complete();
}

// changeTimeOf gives the time of a file as utcText does.
std::string changeTimeOf(const fs::path& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return {};
    const uint64_t ticks =
        uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    return utcText(static_cast<std::time_t>(ticks / 10000000) - 11644473600); // from 1601 to 1970
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

// Members are missing for what isn't there.
Json::Value jsonOf(const dashboardState_t& state)
{
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

Json::Value jsonOf(const copiedFile_t& file, const fs::path& folder)
{
    Json::Value json(Json::objectValue);
    json["path"] = utf8FromWide(file.path);
    if (wideFromUtf8(json["path"].asString()) != file.path)
        throw CToolError("the name " + json["path"].asString() + " can't be noted down",
                         "rename it first");
    if (file.copy) {
        json["copy"] = utf8(fs::path(*file.copy).lexically_relative(folder));
        json["attributes"] = static_cast<Json::UInt>(file.state.attributes);
    }
    return json;
}

} // namespace

void writeCopyIndex(const fs::path& folder, const safetyCopy_t& copy)
{
    Json::Value index(Json::objectValue);
    index["made"] = copy.made;
    if (copy.continues != 0)
        index["continues"] = copy.continues;
    for (const unsigned undone : copy.undoes)
        index["undoes"].append(undone);
    index["folder"] = copy.folder;
    index["files"] = Json::Value(Json::arrayValue);
    for (const auto& file : copy.files)
        index["files"].append(jsonOf(file, folder));
    index["dashboard"] = jsonOf(copy.dashboard);
    index["settings"] = Json::Value(Json::objectValue);
    for (const auto& setting : copy.settings)
        index["settings"][utf8FromWide(setting.key)] = utf8FromWide(setting.value);
    writeText(folder / indexName, jsonText(index, false));
}

bool isIndexedCopy(const fs::path& folder)
{
    return fs::exists(folder / indexName);
}

safetyCopy_t readCopyIndex(const fs::path& folder)
{
    const bytes_t bytes = readInput(utf8(folder / indexName), std::cin);
    const auto* const text = reinterpret_cast<const char*>(bytes.data());
    Json::Value index;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text, text + bytes.size(), &index, nullptr) || !index.isObject() ||
        !index["files"].isArray())
        throw CToolError("it is no index");
    safetyCopy_t copy;
    copy.made = index.get("made", changeTimeOf(folder / indexName)).asString();
    copy.finished = isThere(folder / finishedName);
    copy.continues = index["continues"].asUInt();
    for (const auto& number : index["undoes"])
        copy.undoes.push_back(number.asUInt());
    copy.folder = index["folder"].asString();
    for (const auto& file : index["files"]) {
        copiedFile_t& one = copy.files.emplace_back();
        one.path = wideFromUtf8(file["path"].asString());
        if (!file.isMember("copy"))
            continue;
        one.copy = folder / wideFromUtf8(file["copy"].asString());
        const auto state = fileAt(*one.copy);
        if (!state)
            throw CToolError("a file is missing");
        one.state = {file["attributes"].asUInt(), state->size};
    }
    copy.dashboard = dashboardOfJson(index["dashboard"]);
    for (const auto& key : index["settings"].getMemberNames())
        copy.settings.push_back(
            {wideFromUtf8(key), wideFromUtf8(index["settings"][key].asString())});
    return copy;
}

void markFinished(const fs::path& folder)
{
    writeText(folder / finishedName, "");
}
