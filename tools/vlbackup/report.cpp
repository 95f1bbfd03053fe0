#include "report.h"

#include "document.h"

#include <algorithm>
#include <iomanip>

namespace {

Json::UInt64 contentSize(const CBackupView& backup)
{
    Json::UInt64 total = 0;
    for (const BackupFile& file : backup.files)
        total += file.content.size();
    return total;
}

const char* formName(SettingsForm form)
{
    switch (form) {
    case SettingsForm::absent:
        return "absent";
    case SettingsForm::document:
        return "document";
    case SettingsForm::legacy:
        return "legacy";
    default:
        return "unsupported";
    }
}

const char* kindName(BackupFinding::Kind kind)
{
    switch (kind) {
    case BackupFinding::Kind::malformed:
        return "malformed";
    case BackupFinding::Kind::hostile:
        return "hostile";
    default:
        return "note";
    }
}

auto countOf(const CBackupView& backup, BackupFinding::Kind kind)
{
    return std::count_if(backup.findings.begin(), backup.findings.end(),
                         [kind](const BackupFinding& f) { return f.kind == kind; });
}

Json::Value settingsJson(const BackupSettings& settings)
{
    Json::Value value;
    value["form"] = formName(settings.form);
    if (settings.form == SettingsForm::document)
        value["document"] = cleanUtf8(settings.document);
    if (settings.form == SettingsForm::legacy) {
        value["showPrompt"] = settings.showPrompt;
        value["hotKey"] = cleanUtf8(settings.hotKey);
        value["dontPromptList"] = base64(settings.dontPromptList);
    }
    return value;
}

} // namespace

void listText(const CBackupView& backup, std::ostream& out)
{
    out << "templates\n";
    for (const BackupFile& file : backup.files)
        out << std::setw(10) << file.content.size() << "  " << printable(file.name) << '\n';
    out << "quick links\n";
    for (const BackupLink& link : backup.links) {
        out << "  " << printable(link.name) << " -> " << printable(link.target) << "  ("
            << printable(link.manifest) << ", profile " << link.profile << ", id "
            << printable(link.manifestid) << (link.wocred ? ", without credentials)\n" : ")\n");
    }
    out << "categories\n";
    for (const BackupCategory& category : backup.categories)
        out << "  " << printable(category.name) << " = " << printable(category.text) << '\n';
    out << "settings (" << formName(backup.settings.form) << ")\n";
    if (backup.settings.form == SettingsForm::document)
        out << "  " << printable(backup.settings.document) << '\n';
    if (backup.settings.form == SettingsForm::legacy) {
        out << "  training prompt: " << (backup.settings.showPrompt ? "show" : "hide") << '\n'
            << "  hot key: " << printable(backup.settings.hotKey) << '\n'
            << "  do-not-prompt list: " << backup.settings.dontPromptList.size()
            << " bytes as stored\n";
    }
}

Json::Value listJson(const CBackupView& backup)
{
    Json::Value value;
    value["templates"] = Json::arrayValue;
    for (const BackupFile& file : backup.files) {
        Json::Value entry;
        entry["name"] = cleanUtf8(file.name);
        entry["size"] = Json::UInt64{file.content.size()};
        entry["target"] = cleanUtf8(file.target);
        entry["alien"] = file.alien;
        value["templates"].append(std::move(entry));
    }
    value["quicklinks"] = Json::arrayValue;
    for (const BackupLink& link : backup.links) {
        Json::Value entry;
        entry["name"] = cleanUtf8(link.name);
        entry["target"] = cleanUtf8(link.target);
        entry["manifest"] = cleanUtf8(link.manifest);
        entry["profile"] = link.profile;
        entry["manifestid"] = cleanUtf8(link.manifestid);
        entry["wocred"] = link.wocred;
        value["quicklinks"].append(std::move(entry));
    }
    value["categories"] = Json::arrayValue;
    for (const BackupCategory& category : backup.categories) {
        Json::Value entry;
        entry["name"] = cleanUtf8(category.name);
        entry["text"] = cleanUtf8(category.text);
        value["categories"].append(std::move(entry));
    }
    value["settings"] = settingsJson(backup.settings);
    return value;
}

void infoText(const CBackupView& backup, std::ostream& out)
{
    using Kind = BackupFinding::Kind;
    const auto alien = std::count_if(backup.files.begin(), backup.files.end(),
                                     [](const BackupFile& f) { return f.alien; });
    out << "backup       " << backup.size << " bytes, " << backupVersionText(backup.elementCount)
        << '\n'
        << "templates    " << backup.files.size() << " (" << alien << " with a full path), "
        << contentSize(backup) << " bytes\n"
        << "quick links  " << backup.links.size() << (backup.oldLinks ? ", old form\n" : "\n")
        << "categories   " << backup.categories.size() << '\n'
        << "settings     " << formName(backup.settings.form) << '\n'
        << "findings     malformed " << countOf(backup, Kind::malformed) << ", hostile "
        << countOf(backup, Kind::hostile) << ", notes " << countOf(backup, Kind::note) << '\n';
}

Json::Value infoJson(const CBackupView& backup)
{
    using Kind = BackupFinding::Kind;
    Json::Value value;
    value["size"] = Json::UInt64{backup.size};
    value["elements"] = Json::UInt64{backup.elementCount};
    value["version"] = backupVersionText(backup.elementCount);
    value["elementSizes"] = Json::arrayValue;
    for (const auto& element : backup.elements)
        value["elementSizes"].append(Json::UInt64{element.size()});
    value["templates"] = Json::UInt64{backup.files.size()};
    value["templateBytes"] = contentSize(backup);
    value["quicklinks"] = Json::UInt64{backup.links.size()};
    value["oldQuicklinks"] = backup.oldLinks;
    value["categories"] = Json::UInt64{backup.categories.size()};
    value["settings"] = formName(backup.settings.form);
    for (const Kind kind : {Kind::malformed, Kind::hostile, Kind::note})
        value["findings"][kindName(kind)] = Json::Int64{countOf(backup, kind)};
    return value;
}

void completeFindings(CBackupView& backup)
{
    const BackupSettings& settings = backup.settings;
    if (settings.form != SettingsForm::document || settings.document.empty() ||
        parseDocument(settings.document))
        return;
    backup.findings.push_back(
        {BackupFinding::Kind::malformed, "settings",
         "the document isn't JSON; a restore leaves the settings as they are"});
}

void verifyText(const CBackupView& backup, std::ostream& out)
{
    for (const BackupFinding& finding : backup.findings)
        out << kindName(finding.kind) << ": " << finding.where << ": " << printable(finding.what)
            << '\n';
    out << (backup.Sound() ? "sound\n" : "not sound\n");
}

Json::Value verifyJson(const CBackupView& backup)
{
    Json::Value value;
    value["sound"] = backup.Sound();
    value["findings"] = Json::arrayValue;
    for (const BackupFinding& finding : backup.findings) {
        Json::Value entry;
        entry["kind"] = kindName(finding.kind);
        entry["where"] = finding.where;
        entry["what"] = cleanUtf8(finding.what);
        value["findings"].append(std::move(entry));
    }
    return value;
}

std::string base64(std::span<const uint8_t> bytes)
{
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? bytes[i + k] : 0U);
        for (size_t k = 0; k < 4; ++k)
            out += k <= count ? digits[group >> (18 - 6 * k) & 0x3F] : '=';
    }
    return out;
}
