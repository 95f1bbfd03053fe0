#include "backup/settingsdocument.h"

#include "common/scoped.h"
#include "common/text.h"
#include "formats/backup/documentsettings.h"
#include "formats/backup/records.h"
#include "storage/settings.h"
#include "storage/textfile.h"
#include "tracecore/tracer.h"

#include <windows.h>
#include <comdef.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <sstream>

#include <json/json.h>

using namespace tracecore;

namespace {

// Booleans are stored as these: "0" would read back as the default.
constexpr wchar_t storedTrue[] = L"1";
constexpr wchar_t storedFalse[] = L"-1";

// ExportedSetting is what an export found.
struct ExportedSetting {
    Json::Value value;           // null leaves the member out
    std::function<void()> trace; // for when all are read
};

// FoundSetting is what a restore found. An empty text leaves the setting as it is.
struct FoundSetting {
    std::wstring text;
    std::wstring path; // of the file that the text is for
};

// traceCaught traces the exception in flight the way the error frame does.
void traceCaught(const std::string& operation)
{
    try {
        throw;
    } catch (const std::exception& exception) {
        traceException((operation + "[std]").c_str(), exception);
    } catch (const _com_error& error) {
        traceIfFailed((operation + "[com]").c_str(), error.Error());
    } catch (...) {
        traceNote((operation + "oo").c_str());
    }
}

// A text ends at its first zero, wherever it came from.
template <class Text> Text upToZero(const Text& text)
{
    return text.c_str();
}

std::string readListText(const std::wstring& path)
{
    std::string text;
    if (!path.empty())
        decodetext(mappedfile_scope(path).get(), text);
    return text;
}

// isTrue is true for whatever isn't empty or zero. The library itself refuses texts and containers.
bool isTrue(const Json::Value& value)
{
    if (value.isString())
        return !value.asString().empty();
    if (value.isArray() || value.isObject())
        return !value.empty();
    return value.asBool();
}

std::wstring flagOf(const Json::Value& value)
{
    return isTrue(value) ? storedTrue : storedFalse;
}

// textOf refuses numbers, which the library itself would write out.
std::wstring textOf(const Json::Value& value)
{
    if (value.isNumeric())
        Json::throwLogicError("Type is not convertible to string");
    return wideFromUtf8(upToZero(value.asString()));
}

// memberOf gives null for a member of a value that has nothing in it, even of an array.
const Json::Value& memberOf(const Json::Value& value, const std::string& member)
{
    return value.empty() ? Json::Value::nullSingleton() : value[member];
}

// parse gives false for any text that the library can't take, however it says so: most errors are a
// result, but nesting past its limit is an exception.
bool parse(const std::string& text, Json::Value& root)
{
    try {
        return Json::Reader().parse(text, root, true);
    } catch (const Json::Exception&) {
        return false;
    }
}

void writeListFile(const std::wstring& path, const std::wstring& text)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return;
    // The count is in characters where the call takes bytes: only the first half is written.
    // Intended.
    DWORD written = 0;
    if (WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
        traceFormat(0, "file name='%ls', dataLen = %d.", path.c_str(), written);
}

ExportedSetting exportPrompt(const std::wstring& key)
{
    const bool standard = settings_getbool(key + L"_def", false);
    const bool prompt = settings_getbool(key, standard);
    return {prompt, [standard, prompt] {
                traceFormat(0, "Pre train [default] = %s", standard ? "Show" : "Hide");
                traceFormat(0, "Pre train [current] = %s", prompt ? "Show" : "Hide");
            }};
}

ExportedSetting exportHotKey(const std::wstring& key)
{
    std::string text = utf8FromWide(upToZero(settings_getpath(key)));
    if (text.empty())
        text = "Ctrl+Win+72";
    return {text,
            [text] { traceFormat(0, "Hotkey    [current] = %ls", wideFromUtf8(text).c_str()); }};
}

ExportedSetting exportList(const std::wstring& key)
{
    const std::wstring path = settings_getpath(key);
    const std::string list = readListText(path);
    const std::string text = upToZero(list);
    return {text.empty() ? Json::Value() : Json::Value(text), [path, size = list.size()] {
                if (size > 0)
                    traceFormat(0, "Dont prmpt[size=%d] = %ls", static_cast<int>(size),
                                path.c_str());
            }};
}

ExportedSetting exportGrabbing(const std::wstring& key)
{
    const bool grabbing = settings_getpath(key) == L"1";
    return {grabbing,
            [grabbing] { traceFormat(0, "Use Grabbing Creds  = %s", grabbing ? "Yes" : "No"); }};
}

FoundSetting legacyPrompt(const LegacySettings& legacy, const std::wstring&)
{
    return {legacy.showPrompt ? storedTrue : storedFalse, {}};
}

FoundSetting legacyHotKey(const LegacySettings& legacy, const std::wstring&)
{
    return {{legacy.hotKey.begin(), legacy.hotKey.end()}, {}};
}

// The whole element, tag and length with it, is the list's text. Intended.
FoundSetting legacyList(const LegacySettings& legacy, const std::wstring& key)
{
    if (legacy.dontPromptList.empty())
        return {};
    const std::string text(legacy.dontPromptList.begin(), legacy.dontPromptList.end());
    return {wideFromUtf8(upToZero(text)), settings_getpath(key)};
}

FoundSetting notInLegacy(const LegacySettings&, const std::wstring&)
{
    return {};
}

void applyText(const std::wstring& key, const FoundSetting& found)
{
    if (!found.text.empty())
        settings_set(key, found.text);
}

// The list of a document has no path, so that it is not written back. Intended.
void applyList(const std::wstring&, const FoundSetting& found)
{
    if (!found.path.empty() && !found.text.empty())
        writeListFile(found.path, found.text);
}

// Setting is one setting of the document. Its member has the name of its key.
struct Setting {
    const wchar_t* key;
    ExportedSetting (*toMember)(const std::wstring& key);
    std::wstring (*fromMember)(const Json::Value& member);
    FoundSetting (*fromLegacy)(const LegacySettings& legacy, const std::wstring& key);
    void (*apply)(const std::wstring& key, const FoundSetting& found);
};

// In the order of reading, tracing and applying.
constexpr Setting settingsTable[] = {
    {L"show_training_prompt", exportPrompt, flagOf, legacyPrompt, applyText},
    {L"open_guard_desk_qa", exportHotKey, textOf, legacyHotKey, applyText},
    {L"path_dontpromptlist_filename", exportList, textOf, legacyList, applyList},
    {L"useGrabbingCreds", exportGrabbing, flagOf, notInLegacy, applyText},
};
static_assert(std::equal(std::begin(settingsTable), std::end(settingsTable),
                         std::begin(documentSettings), std::end(documentSettings),
                         [](const Setting& setting, const DocumentSetting& listed) {
                             const std::wstring_view key = setting.key;
                             return std::equal(key.begin(), key.end(), listed.name.begin(),
                                               listed.name.end());
                         }),
              "the tools have another list of the settings");

using FoundSettings = std::array<FoundSetting, std::size(settingsTable)>;

void readMembers(const Json::Value& root, FoundSettings& found)
{
    const Json::Value& current = memberOf(root["settings"], "current");
    for (size_t i = 0; i < found.size(); ++i) {
        const Setting& setting = settingsTable[i];
        const Json::Value& member = memberOf(current, utf8FromWide(setting.key));
        if (!member.empty())
            found[i].text = setting.fromMember(member);
    }
}

void readLegacy(const LegacySettings& legacy, FoundSettings& found)
{
    for (size_t i = 0; i < found.size(); ++i)
        found[i] = settingsTable[i].fromLegacy(legacy, settingsTable[i].key);
}

bool readDocument(const CDerElement& element, FoundSettings& found)
{
    std::string text;
    try {
        text = element.NarrowText();
    } catch (...) {
        traceCaught("json_settings");
    }
    if (text.empty()) {
        traceFormat(0, "Empty json data.");
        return false;
    }
    Json::Value root;
    if (!parse(text, root)) {
        traceFormat(0, "Bad json format.");
        return false;
    }
    readMembers(root, found);
    return true;
}

} // namespace

bool ExportSettings(CDerNode* slot)
{
    if (!slot)
        return false;
    std::array<ExportedSetting, std::size(settingsTable)> exported;
    for (size_t i = 0; i < exported.size(); ++i)
        exported[i] = settingsTable[i].toMember(settingsTable[i].key);
    for (const ExportedSetting& setting : exported)
        setting.trace();
    Json::Value root;
    Json::Value& current = root["settings"]["current"];
    for (size_t i = 0; i < exported.size(); ++i)
        if (!exported[i].value.isNull())
            current[utf8FromWide(settingsTable[i].key)] = std::move(exported[i].value);
    std::string text;
    jv2s(root, text);
    slot->SetSequence(1);
    slot->Child(0).SetNarrow(text);
    return true;
}

bool RestoreSettings(const CDerElement* element)
{
    if (!element) {
        traceFormat(0, "Invalid BLOB pointer.");
        return false;
    }
    CDerSequenceView items; // stays without any when the element isn't a sequence
    static_cast<void>(items.Decode(*element));
    FoundSettings found;
    switch (settingsFormOf(items.Count())) {
    case SettingsForm::document:
        if (!readDocument(items[0], found))
            return false;
        break;
    case SettingsForm::legacy:
        readLegacy(decodeLegacySettings(items), found);
        break;
    default:
        traceStatus("Unsupported settings format.", 0);
        return false;
    }
    for (size_t i = 0; i < found.size(); ++i)
        settingsTable[i].apply(settingsTable[i].key, found[i]);
    return true;
}

void jv2s(const Json::Value& value, std::string& text)
{
    text.clear();
    if (value.empty())
        return;
    try {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        builder["commentStyle"] = "None";
        builder["emitUTF8"] = true; // bytes that are no UTF-8 pass too
        const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
        std::ostringstream line;
        line.exceptions(std::ios::badbit); // else it would only stop when memory runs out
        writer->write(value, &line);
        text = line.str();
    } catch (...) {
        traceCaught("jv2s");
    }
}
