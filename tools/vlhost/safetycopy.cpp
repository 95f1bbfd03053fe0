#include "safetycopy.h"

#include "common/text.h"
#include "formats/backup/documentsettings.h"
#include "print.h"
#include "restoreplan.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/jsontext.h"
#include "shared/outputfile.h"
#include "storage/paths.h"
#include "storage/settings.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <unordered_map>
#include <unordered_set>

#include <json/reader.h>

namespace fs = std::filesystem;

namespace {

constexpr size_t keptCopies = 5;
constexpr size_t filesInFolder = 256;          // thousands in one folder are slow to make
constexpr wchar_t indexName[] = L"index.json"; // the last file to be written
constexpr wchar_t finishedName[] = L"finished";
constexpr wchar_t lockName[] = L"lock";
constexpr wchar_t unfinishedSuffix[] = L".part"; // of a copy that is being made
constexpr wchar_t droppedSuffix[] = L".dropped"; // of one that is being removed

std::string utf8(const fs::path& path)
{
    return utf8FromWide(path.wstring());
}

// Where earlier versions kept their one copy: while it was replaced, there were two.
std::vector<fs::path> formerFolders()
{
    const std::wstring former = localappdata_rootdir() + L"RestoreUndo";
    return {former + L".old", former, former + L".new"};
}

void writeText(const fs::path& path, const std::string& text)
{
    COutputFile file(utf8(path), true, {}, std::cout);
    file.Stream() << text;
    file.Complete();
}

std::string timeText(std::time_t time)
{
    std::tm fields{};
    char text[32] = "";
    if (gmtime_s(&fields, &time) == 0)
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &fields);
    return text;
}

// The time of a file in that form.
std::string timeOf(const fs::path& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return {};
    const uint64_t ticks =
        uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    return timeText(static_cast<std::time_t>(ticks / 10000000) - 11644473600); // from 1601 to 1970
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

// Members are missing for what isn't there.
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
    for (const auto& [name, kind] : documentSettings) {
        std::wstring value;
        if (kind != DocumentSetting::Kind::fileText &&
            SUCCEEDED(settings_query(wideFromUtf8(name), value)))
            json[std::string(name)] = utf8FromWide(value);
    }
    return json;
}

// copyFiles copies them into folders of their own. A file that isn't there has no copy: when the
// work is undone, it goes.
Json::Value copyFiles(const std::vector<std::wstring>& paths, const fs::path& folder)
{
    Json::Value files(Json::arrayValue);
    std::unordered_set<std::wstring> seen;
    CProgress progress("safety copy", paths.size());
    for (const auto& path : paths) {
        progress.Step();
        if (!seen.insert(fileKey(path)).second)
            continue;
        Json::Value file(Json::objectValue);
        file["path"] = utf8FromWide(path);
        if (wideFromUtf8(file["path"].asString()) != path)
            throw CToolError("the name " + file["path"].asString() + " can't be noted down",
                             "rename it first");
        if (const auto now = fileAt(path)) {
            const size_t number = files.size();
            const fs::path copy = fs::path(L"files") / std::to_wstring(number / filesInFolder) /
                                  std::to_wstring(number);
            copyFile(path, folder / copy);
            file["copy"] = utf8(copy);
            file["attributes"] = static_cast<Json::UInt>(now->attributes);
        }
        files.append(std::move(file));
    }
    CProgress settling("writing to the disk", files.size());
    for (const auto& file : files) {
        settling.Step();
        if (file.isMember("copy"))
            settleFile(folder / wideFromUtf8(file["copy"].asString()), FILE_ATTRIBUTE_NORMAL);
    }
    return files;
}

// readCopy reads a copy's index. The sizes are those of the copied files; one that is missing makes
// the copy a damaged one.
//
// Errors: std::exception
safetyCopy_t readCopy(const fs::path& folder)
{
    const bytes_t bytes = readInput(utf8(folder / indexName), std::cin);
    const auto* const text = reinterpret_cast<const char*>(bytes.data());
    Json::Value index;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text, text + bytes.size(), &index, nullptr) || !index.isObject() ||
        !index["files"].isArray())
        throw CToolError("it is no index");
    safetyCopy_t copy;
    copy.made = index.get("made", timeOf(folder / indexName)).asString();
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

// numberOf reads the number that a folder's name begins with; 0 for none.
unsigned numberOf(const std::wstring& name)
{
    return static_cast<unsigned>(std::wcstoul(name.c_str(), nullptr, 10));
}

using fileMap_t = std::unordered_map<std::wstring, const copiedFile_t*>;

fileMap_t mapOf(const safetyCopy_t& copy)
{
    fileMap_t map;
    for (const auto& file : copy.files)
        if (file.copy)
            map.emplace(fileKey(file.path), &file);
    return map;
}

bool hasCategory(const dashboardState_t& state, const registryValue_t& wanted)
{
    const auto same = [&](const registryValue_t& one) {
        return one.name == wanted.name && one.type == wanted.type && one.data == wanted.data;
    };
    return state.categories &&
           std::any_of(state.categories->begin(), state.categories->end(), same);
}

// isElsewhere is true if all of the copy is on the disk, in the registry or in another copy.
// maps: of all copies
bool isElsewhere(const safetyCopy_t& copy, const std::vector<safetyCopy_t>& all,
                 const std::vector<fileMap_t>& maps)
{
    for (const auto& file : copy.files) {
        if (!file.copy || file.state.size == 0 || fileEquals(file.path, *file.copy))
            continue; // an empty one holds nothing
        const std::wstring key = fileKey(file.path);
        if (std::none_of(maps.begin(), maps.end(), [&](const fileMap_t& map) {
                const auto found = map.find(key);
                return found != map.end() && found->second != &file &&
                       fileEquals(*found->second->copy, *file.copy);
            }))
            return false;
    }
    const dashboardState_t now = readDashboard();
    for (const auto& category : copy.dashboard.categories.value_or(std::vector<registryValue_t>()))
        if (!hasCategory(now, category) &&
            std::none_of(all.begin(), all.end(), [&](const safetyCopy_t& other) {
                return other.number != copy.number && hasCategory(other.dashboard, category);
            }))
            return false;
    return true;
}

} // namespace

uint64_t safetyCopy_t::Bytes() const
{
    uint64_t bytes = 0;
    for (const auto& file : files)
        bytes += file.state.size;
    return bytes;
}

std::wstring safetyCopiesFolder()
{
    const std::wstring root = localappdata_rootdir();
    if (root.empty())
        throw CToolError("the user has no local data folder", "is LOCALAPPDATA set?");
    return root + L"SafetyCopies";
}

std::vector<safetyCopy_t> listSafetyCopies(std::vector<std::wstring>& damaged)
{
    std::vector<safetyCopy_t> copies;
    const fs::path root = safetyCopiesFolder();
    if (!fs::exists(root))
        return copies;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::wstring name = entry.path().filename().wstring();
        if (name.find_first_not_of(L"0123456789") != std::wstring::npos)
            continue;
        try {
            copies.push_back(readCopy(entry.path()));
            copies.back().number = numberOf(name);
        } catch (const std::exception&) {
            damaged.push_back(entry.path().wstring());
        }
    }
    std::sort(copies.begin(), copies.end(), [](const safetyCopy_t& one, const safetyCopy_t& other) {
        return one.number < other.number;
    });
    return copies;
}

CSafetyCopies::CSafetyCopies()
try {
    const fs::path root = safetyCopiesFolder();
    fs::create_directories(root);
    m_lock.reset(CreateFileW((root / lockName).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                             FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (!m_lock)
        throw CToolError(utf8(root / lockName) + " can't be opened: " + errorText(GetLastError()),
                         "nothing was touched; is another restore at work?");
    std::vector<fs::path> unfinished;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::wstring name = entry.path().filename().wstring();
        m_next = std::max(m_next, numberOf(name) + 1);
        if (name.ends_with(unfinishedSuffix) || name.ends_with(droppedSuffix))
            unfinished.push_back(entry.path());
    }
    for (const auto& folder : unfinished)
        fs::remove_all(folder);
    TakeOverFormer();
} catch (const fs::filesystem_error& error) {
    throw CToolError(std::string("no safety copy can be made: ") + error.what(),
                     "nothing was touched");
}

void CSafetyCopies::TakeOverFormer()
{
    for (const auto& former : formerFolders()) {
        if (!fs::exists(former / indexName))
            continue;
        try {
            readCopy(former);
        } catch (const std::exception&) {
            continue; // it was being removed when its program was killed
        }
        writeText(former / finishedName, "");
        fs::rename(former, fs::path(safetyCopiesFolder()) / std::to_wstring(m_next));
        ++m_next;
    }
}

unsigned CSafetyCopies::Make(const std::vector<std::wstring>& paths,
                             const std::vector<unsigned>& undoes)
{
    const unsigned number = m_next++;
    const fs::path target = fs::path(safetyCopiesFolder()) / std::to_wstring(number);
    const fs::path folder = target.wstring() + unfinishedSuffix;
    try {
        std::vector<std::wstring> damaged;
        const auto before = listSafetyCopies(damaged);
        fs::create_directory(folder);
        Json::Value index(Json::objectValue);
        index["made"] = timeText(std::time(nullptr));
        if (!before.empty() && !before.back().finished)
            index["continues"] = before.back().number;
        for (const unsigned undone : undoes)
            index["undoes"].append(undone);
        index["folder"] = utf8FromWide(personalFolder());
        index["files"] = copyFiles(paths, folder);
        index["dashboard"] = jsonOfDashboard();
        index["settings"] = jsonOfSettings();
        writeText(folder / indexName, jsonText(index, false));
        if (!MoveFileExW(folder.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH))
            throw CToolError(utf8(target) + " can't be made: " + errorText(GetLastError()));
        return number;
    } catch (const std::exception& error) {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
        throw CToolError(std::string("no safety copy can be made: ") + error.what(),
                         "nothing was touched");
    }
}

void CSafetyCopies::Finish(unsigned number)
{
    writeText(fs::path(safetyCopiesFolder()) / std::to_wstring(number) / finishedName, "");
}

void CSafetyCopies::Prune(unsigned pinned)
try {
    std::vector<std::wstring> damaged;
    auto copies = listSafetyCopies(damaged);
    std::vector<fileMap_t> maps(copies.size());
    std::transform(copies.begin(), copies.end(), maps.begin(), mapOf);
    for (size_t i = 0; i + keptCopies < copies.size(); ++i) {
        const safetyCopy_t& copy = copies[i];
        if (copy.number == pinned || !isElsewhere(copy, copies, maps))
            continue;
        // Out of the list at once: a removal that is killed half way leaves no half of a copy.
        const fs::path folder = fs::path(safetyCopiesFolder()) / std::to_wstring(copy.number);
        const fs::path dropped = folder.wstring() + droppedSuffix;
        fs::rename(folder, dropped);
        maps[i].clear();
        copies[i].dashboard = {};
        fs::remove_all(dropped);
    }
} catch (const std::exception&) {
    // What stays is removed another time.
}
