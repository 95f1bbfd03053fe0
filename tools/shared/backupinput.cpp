#include "shared/backupinput.h"

#include "formats/backup/documentsettings.h"
#include "formats/text/printable.h"
#include "shared/inputfile.h"
#include "shared/terminal.h"
#include "shared/toolerror.h"

#include <algorithm>

#include <json/reader.h>

namespace {

using Grade = BackupFinding::Grade;

// documentFault says where a restore fails in a document that is JSON; null if it doesn't. The
// files are written by then.
const char* documentFault(const Json::Value& root)
{
    static constexpr char noObject[] = "a member that holds others is no object";
    if (!root.isNull() && !root.isObject())
        return noObject;
    const Json::Value* value = &root;
    for (const char* const member : {"settings", "current"}) {
        value = &(*value)[member];
        if (value->empty())
            return nullptr; // with nothing to restore
        if (!value->isObject())
            return noObject;
    }
    for (const auto& [name, kind] : documentSettings) {
        const Json::Value& member = (*value)[std::string(name)];
        if (kind != DocumentSetting::Kind::flag && !member.empty() && !member.isString() &&
            !member.isBool())
            return "a member that must be a text is none";
    }
    return nullptr;
}

void judgeDocument(CBackupView& backup)
{
    const BackupSettings& settings = backup.settings;
    if (settings.form != SettingsForm::document || settings.document.empty())
        return;
    const BackupPlace place{.element = 3, .offset = settings.offset};
    const std::optional<Json::Value> document = parseDocument(settings.document);
    if (!document)
        backup.Find({Grade::error, "settings",
                     "the document isn't JSON; a restore leaves the settings as they are", place});
    else if (const char* const fault = documentFault(*document))
        backup.Find(
            {Grade::error, "settings",
             fault + std::string("; a restore fails there, with the files replaced by then"),
             place});
}

colour_t colourOf(Grade grade)
{
    constexpr colour_t colours[] = {colour_t::green, colour_t::yellow, colour_t::red};
    return colours[static_cast<size_t>(grade)];
}

} // namespace

bool decodeBackup(std::span<const uint8_t> bytes, CBackupView& view)
{
    if (!view.Decode(bytes))
        return false;
    judgeDocument(view);
    return true;
}

bool beginsAsBackup(std::span<const uint8_t> bytes)
{
    // A digit 0 is the octet that begins a backup, too, but in text no control character comes soon.
    const auto beginning = bytes.first(std::min<size_t>(bytes.size(), 8));
    return bytes.size() > 1 && bytes[0] == 0x30 &&
           (bytes[1] >= 0x80 || std::ranges::any_of(beginning, [](uint8_t c) {
                return c < 0x20 && c != '\t' && c != '\r' && c != '\n';
            }));
}

void refuseBackup(const std::string& name, std::span<const uint8_t> bytes, const CBackupView& view)
{
    if (beginsAsBackup(bytes))
        throw CToolError(shownInput(name) + " is no whole backup: " + view.refusal,
                         "copy it again, or save what is intact by 'vlbackup recover'");
    throw CToolError(shownInput(name) + " is no backup: it is " + describeBytes(bytes),
                     "a backup is what 'vlhost backup' writes");
}

const char* gradeName(Grade grade)
{
    switch (grade) {
    case Grade::error:
        return "error";
    case Grade::warning:
        return "warning";
    default:
        return "note";
    }
}

std::string verdictText(const std::ostream& out, const CBackupView& backup)
{
    const char* text = "sound";
    if (backup.Verdict() == Grade::error)
        text = "not sound";
    else if (backup.Verdict() == Grade::warning)
        text = "sound, with warnings";
    return coloured(out, colourOf(backup.Verdict()), text);
}

std::string findingText(const std::ostream& out, const BackupFinding& finding)
{
    return coloured(out, colourOf(finding.grade), gradeName(finding.grade)) + ": " +
           printable(finding.where + ": " + finding.what);
}

std::optional<Json::Value> parseDocument(const std::string& text)
{
    Json::Value value;
    try {
        if (Json::Reader().parse(text, value))
            return value;
    } catch (const Json::Exception&) {
        // nested too deeply to be read
    }
    return std::nullopt;
}
