#include "record.h"

#include "common/text.h"
#include "places.h"
#include "shared/toolerror.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

namespace {

constexpr int formatVersion = 1;

Json::Value texts(const std::vector<std::wstring>& list)
{
    Json::Value value(Json::arrayValue);
    for (const std::wstring& text : list)
        value.append(utf8FromWide(text));
    return value;
}

std::vector<std::wstring> texts(const Json::Value& value)
{
    std::vector<std::wstring> list;
    for (const Json::Value& text : value)
        list.push_back(wideFromUtf8(text.asString()));
    return list;
}

Json::Value entries(const std::vector<written_t>& list)
{
    Json::Value value(Json::arrayValue);
    for (const written_t& entry : list) {
        Json::Value one;
        one["path"] = utf8FromWide(entry.path);
        one["name"] = utf8FromWide(entry.name);
        for (const std::string& content : entry.contents)
            one["contents"].append(content);
        one["former"] = entry.former;
        value.append(one);
    }
    return value;
}

std::vector<written_t> entries(const Json::Value& value)
{
    std::vector<written_t> list;
    for (const Json::Value& one : value) {
        written_t entry;
        entry.path = wideFromUtf8(one["path"].asString());
        entry.name = wideFromUtf8(one["name"].asString());
        for (const Json::Value& content : one["contents"])
            entry.contents.push_back(content.asString());
        entry.former = one["former"].asString();
        list.push_back(std::move(entry));
    }
    return list;
}

} // namespace

bool written_t::ours(const std::string& content) const
{
    return std::ranges::find(contents, content) != contents.end();
}

written_t* find(std::vector<written_t>& entries, const std::wstring& path, const std::wstring& name)
{
    const auto found = std::ranges::find_if(entries, [&](const written_t& entry) {
        return !_wcsicmp(entry.path.c_str(), path.c_str()) && entry.name == name;
    });
    return found == entries.end() ? nullptr : &*found;
}

const written_t* find(const std::vector<written_t>& entries, const std::wstring& path,
                      const std::wstring& name)
{
    return find(const_cast<std::vector<written_t>&>(entries), path, name);
}

record_t readRecord(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    if (!file)
        return {};
    record_t record;
    try {
        Json::Value value;
        file >> value;
        if (value["format"].asInt() != formatVersion)
            throw CToolError(utf8FromWide(path) + " is of another version of this program",
                             "use that one's");
        record.folders = texts(value["folders"]);
        record.keys = texts(value["keys"]);
        record.files = entries(value["files"]);
        record.values = entries(value["values"]);
    } catch (const Json::Exception&) {
        throw CToolError("the record of the installation, " + utf8FromWide(path) + ", is damaged",
                         "nothing was changed; put it back from a copy, or remove it and what was "
                         "installed by hand");
    }
    return record;
}

void writeRecord(const std::wstring& path, const record_t& record)
{
    Json::Value value;
    value["format"] = formatVersion;
    value["folders"] = texts(record.folders);
    value["keys"] = texts(record.keys);
    value["files"] = entries(record.files);
    value["values"] = entries(record.values);
    const std::wstring part = path + L".part";
    std::ofstream file(std::filesystem::path(part), std::ios::binary);
    file << value << '\n';
    file.close();
    if (!file || !MoveFileExW(part.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        const DWORD error = GetLastError();
        DeleteFileW(part.c_str());
        failed("can't write", path, error);
    }
}
