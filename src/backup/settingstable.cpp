#include "backup/settingstable.h"

#include "common/scoped.h"
#include "common/text.h"
#include "storage/settings.h"
#include "storage/textfile.h"
#include "tracecore/tracer.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

using namespace tracecore;

namespace {

// Booleans are stored as these: "0" would read back as the default.
constexpr wchar_t storedTrue[] = L"1";
constexpr wchar_t storedFalse[] = L"-1";

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

} // namespace

constexpr std::array<Setting, settingCount> settingsTable = {{
    {L"show_training_prompt", exportPrompt, flagOf, legacyPrompt, applyText},
    {L"open_guard_desk_qa", exportHotKey, textOf, legacyHotKey, applyText},
    {L"path_dontpromptlist_filename", exportList, textOf, legacyList, applyList},
    {L"useGrabbingCreds", exportGrabbing, flagOf, notInLegacy, applyText},
}};
static_assert(std::equal(std::begin(settingsTable), std::end(settingsTable),
                         std::begin(documentSettings), std::end(documentSettings),
                         [](const Setting& setting, const DocumentSetting& listed) {
                             const std::wstring_view key = setting.key;
                             return std::equal(key.begin(), key.end(), listed.name.begin(),
                                               listed.name.end());
                         }),
              "the tools have another list of the settings");
