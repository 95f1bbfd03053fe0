#include "backup/settingsdocument.h"

#include "common/scoped.h"
#include "common/text.h"
#include "formats/backup/records.h"
#include "storage/settings.h"
#include "storage/textfile.h"
#include "tracecore/tracer.h"

#include <windows.h>
#include <comdef.h>

#include <memory>
#include <sstream>

#include <json/json.h>

using namespace tracecore;

namespace {

// A member carries the key of its setting.
struct Setting {
    const char* member;
    const wchar_t* key;
};
constexpr Setting showPrompt = {"show_training_prompt", L"show_training_prompt"};
constexpr Setting hotKey = {"open_guard_desk_qa", L"open_guard_desk_qa"};
constexpr Setting grabbing = {"useGrabbingCreds", L"useGrabbingCreds"};
constexpr Setting listFile = {"path_dontpromptlist_filename", L"path_dontpromptlist_filename"};

// Booleans are stored as these: "0" would read back as the default.
constexpr wchar_t storedTrue[] = L"1";
constexpr wchar_t storedFalse[] = L"-1";

// NewSettings is what a restore found; what is empty stays as it is.
struct NewSettings {
    std::wstring prompt;
    std::wstring grabbing;
    std::wstring hotKey;
    std::wstring listText;
    std::wstring listPath;
};

// TraceCaught traces the exception in flight the way the error frame does.
void TraceCaught(const std::string& operation)
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
template <class Text> Text UpToZero(const Text& text)
{
    return text.c_str();
}

std::string ReadListText(const std::wstring& path)
{
    std::string text;
    if (!path.empty())
        decodetext(mappedfile_scope(path).get(), text);
    return text;
}

// BoolOf is true for whatever isn't empty or zero. The library itself refuses texts and containers.
bool BoolOf(const Json::Value& value)
{
    if (value.isString())
        return !value.asString().empty();
    if (value.isArray() || value.isObject())
        return !value.empty();
    return value.asBool();
}

// TextOf refuses numbers, which the library itself would write out.
std::wstring TextOf(const Json::Value& value)
{
    if (value.isNumeric())
        Json::throwLogicError("Type is not convertible to string");
    return wideFromUtf8(UpToZero(value.asString()));
}

// MemberOf gives null for a member of a value that has nothing in it, even of an array.
const Json::Value& MemberOf(const Json::Value& value, const char* member)
{
    return value.empty() ? Json::Value::nullSingleton() : value[member];
}

// Parse gives false for any text that the library can't take, however it says so: most errors are a
// result, but nesting past its limit is an exception.
bool Parse(const std::string& text, Json::Value& root)
{
    try {
        return Json::Reader().parse(text, root, true);
    } catch (const Json::Exception&) {
        return false;
    }
}

void ReadMembers(const Json::Value& root, NewSettings& found)
{
    const Json::Value& current = MemberOf(root["settings"], "current");
    const Json::Value& prompt = MemberOf(current, showPrompt.member);
    if (!prompt.empty())
        found.prompt = BoolOf(prompt) ? storedTrue : storedFalse;
    const Json::Value& grab = MemberOf(current, grabbing.member);
    if (!grab.empty())
        found.grabbing = BoolOf(grab) ? storedTrue : storedFalse;
    const Json::Value& key = MemberOf(current, hotKey.member);
    if (!key.empty())
        found.hotKey = TextOf(key);
    // The list's path stays empty, so that the list is not written back. Intended.
    const Json::Value& list = MemberOf(current, listFile.member);
    if (!list.empty())
        found.listText = TextOf(list);
}

bool ReadDocument(const CDerElement& element, NewSettings& found)
{
    std::string text;
    try {
        text = element.NarrowText();
    } catch (...) {
        TraceCaught("json_settings");
    }
    if (text.empty()) {
        traceFormat(0, "Empty json data.");
        return false;
    }
    Json::Value root;
    if (!Parse(text, root)) {
        traceFormat(0, "Bad json format.");
        return false;
    }
    ReadMembers(root, found);
    return true;
}

void ReadLegacy(const LegacySettings& legacy, NewSettings& found)
{
    found.prompt = legacy.showPrompt ? storedTrue : storedFalse;
    found.hotKey.assign(legacy.hotKey.begin(), legacy.hotKey.end());
    if (legacy.dontPromptList.empty())
        return;
    found.listPath = settings_getpath(listFile.key);
    // The whole element, tag and length with it, is the text. Intended.
    const std::string text(legacy.dontPromptList.begin(), legacy.dontPromptList.end());
    found.listText = wideFromUtf8(UpToZero(text));
}

void WriteListFile(const std::wstring& path, const std::wstring& text)
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

void Apply(const NewSettings& found)
{
    if (!found.prompt.empty())
        settings_set(showPrompt.key, found.prompt);
    if (!found.hotKey.empty())
        settings_set(hotKey.key, found.hotKey);
    if (!found.grabbing.empty())
        settings_set(grabbing.key, found.grabbing);
    if (!found.listPath.empty() && !found.listText.empty())
        WriteListFile(found.listPath, found.listText);
}

} // namespace

bool ExportSettings(CDerNode* slot)
{
    if (!slot)
        return false;
    const bool promptDefault = settings_getbool(L"show_training_prompt_def", false);
    const bool prompt = settings_getbool(showPrompt.key, promptDefault);
    std::string key = utf8FromWide(UpToZero(settings_getpath(hotKey.key)));
    if (key.empty())
        key = "Ctrl+Win+72";
    const std::wstring listPath = settings_getpath(listFile.key);
    const std::string list = ReadListText(listPath);
    const bool grab = settings_getpath(grabbing.key) == L"1";

    traceFormat(0, "Pre train [default] = %s", promptDefault ? "Show" : "Hide");
    traceFormat(0, "Pre train [current] = %s", prompt ? "Show" : "Hide");
    traceFormat(0, "Hotkey    [current] = %ls", wideFromUtf8(key).c_str());
    if (!list.empty())
        traceFormat(0, "Dont prmpt[size=%d] = %ls", static_cast<int>(list.size()),
                    listPath.c_str());
    traceFormat(0, "Use Grabbing Creds  = %s", grab ? "Yes" : "No");

    Json::Value root;
    Json::Value& current = root["settings"]["current"];
    current[showPrompt.member] = prompt;
    current[hotKey.member] = key;
    current[grabbing.member] = grab;
    if (const std::string text = UpToZero(list); !text.empty())
        current[listFile.member] = text;
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
    CDerSequenceView elements; // stays without any when the element isn't a sequence
    static_cast<void>(elements.Decode(*element));
    NewSettings found;
    if (elements.Count() == 1) {
        if (!ReadDocument(elements[0], found))
            return false;
    } else if (elements.Count() >= 2) {
        ReadLegacy(decodeLegacySettings(elements), found);
    } else {
        traceStatus("Unsupported settings format.", 0);
        return false;
    }
    Apply(found);
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
        TraceCaught("jv2s");
    }
}
