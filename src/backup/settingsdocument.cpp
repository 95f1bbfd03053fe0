#include "backup/settingsdocument.h"

#include "backup/settingstable.h"
#include "common/text.h"
#include "formats/backup/records.h"
#include "tracecore/tracer.h"

#include <comdef.h>

#include <array>
#include <memory>
#include <sstream>
#include <string_view>

#include <json/json.h>

using namespace tracecore;

namespace {

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

// memberOf gives null for a member of a value that has nothing in it, even of an array.
// member: by value, or newer compilers take the result for a part of it
const Json::Value& memberOf(const Json::Value& value, std::string_view member)
{
    return value.empty() ? Json::Value::nullSingleton() : value[std::string(member)];
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

using FoundSettings = std::array<FoundSetting, settingCount>;

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
    std::array<ExportedSetting, settingCount> exported;
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
