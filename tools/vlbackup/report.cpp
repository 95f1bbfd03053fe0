#include "report.h"

#include "formats/text/printable.h"
#include "shared/backupinput.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <iomanip>

namespace {

using Grade = BackupFinding::Grade;

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

Json::Value settingsJson(const BackupSettings& settings)
{
    Json::Value value;
    value["form"] = formName(settings.form);
    if (settings.form == SettingsForm::document)
        value["document"] = settings.document;
    if (settings.form == SettingsForm::legacy) {
        value["showPrompt"] = settings.showPrompt;
        value["hotKey"] = settings.hotKey;
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

void listJson(const CBackupView& backup, std::ostream& out)
{
    CJsonDocument document(out);
    document.BeginList("categories");
    for (const BackupCategory& category : backup.categories) {
        Json::Value entry;
        entry["name"] = category.name;
        entry["text"] = category.text;
        document.Item(entry);
    }
    document.EndList();
    document.BeginList("quicklinks");
    for (const BackupLink& link : backup.links) {
        Json::Value entry;
        entry["name"] = link.name;
        entry["target"] = link.target;
        entry["manifest"] = link.manifest;
        entry["profile"] = link.profile;
        entry["manifestid"] = link.manifestid;
        entry["wocred"] = link.wocred;
        document.Item(entry);
    }
    document.EndList();
    document.Member("settings", settingsJson(backup.settings));
    document.BeginList("templates");
    for (const BackupFile& file : backup.files) {
        Json::Value entry;
        entry["name"] = file.name;
        entry["size"] = Json::UInt64{file.content.size()};
        entry["target"] = file.target;
        entry["alien"] = file.alien;
        document.Item(entry);
    }
    document.EndList();
}

void infoText(const CBackupView& backup, std::ostream& out)
{
    const auto alien = std::count_if(backup.files.begin(), backup.files.end(),
                                     [](const BackupFile& f) { return f.alien; });
    out << "backup       " << backup.size << " bytes, " << backupVersionText(backup.elementCount)
        << '\n'
        << "templates    " << backup.files.size() << " (" << alien << " with a full path), "
        << contentSize(backup) << " bytes\n"
        << "quick links  " << backup.links.size() << (backup.oldLinks ? ", old form\n" : "\n")
        << "categories   " << backup.categories.size() << '\n'
        << "settings     " << formName(backup.settings.form) << '\n'
        << "verdict      " << verdictText(backup) << " (errors "
        << backup.FindingCount(Grade::error) << ", warnings " << backup.FindingCount(Grade::warning)
        << ", notes " << backup.FindingCount(Grade::note) << ")\n";
}

void infoJson(const CBackupView& backup, std::ostream& out)
{
    CJsonDocument document(out);
    Json::Value value;
    value["size"] = Json::UInt64{backup.size};
    value["elements"] = Json::UInt64{backup.elementCount};
    value["version"] = backupVersionText(backup.elementCount);
    value["templates"] = Json::UInt64{backup.files.size()};
    value["templateBytes"] = contentSize(backup);
    value["quicklinks"] = Json::UInt64{backup.links.size()};
    value["oldQuicklinks"] = backup.oldLinks;
    value["categories"] = Json::UInt64{backup.categories.size()};
    value["settings"] = formName(backup.settings.form);
    value["verdict"] = verdictName(backup);
    for (const Grade grade : {Grade::error, Grade::warning, Grade::note})
        value["findings"][gradeName(grade)] = Json::UInt64{backup.FindingCount(grade)};
    for (const std::string& name : value.getMemberNames())
        document.Member(name.c_str(), value[name]);
    document.BeginList("elementSizes");
    for (const auto& element : backup.elements)
        document.Item(Json::UInt64{element.size()});
    document.EndList();
}

const char* verdictName(const CBackupView& backup)
{
    return backup.Sound() ? "sound" : gradeName(backup.Verdict());
}

Json::Value findingJson(const BackupFinding& finding)
{
    Json::Value value;
    value["grade"] = gradeName(finding.grade);
    value["where"] = finding.where;
    value["what"] = finding.what;
    return value;
}

void diffText(const std::vector<BackupDifference>& differences, std::ostream& out)
{
    bool equal = true;
    for (const BackupDifference& difference : differences) {
        const std::string& reason = difference.reason;
        equal = equal && !reason.empty();
        out << difference.element << (difference.item.empty() ? "" : " ")
            << printable(difference.item) << ": " << printable(difference.what)
            << (reason.empty() ? "" : " (" + reason + ")") << '\n';
    }
    if (equal)
        out << (differences.empty() ? "equal\n" : "equal except for that\n");
}

void diffJson(const std::vector<BackupDifference>& differences, bool withReasons, std::ostream& out)
{
    CJsonDocument document(out);
    document.BeginList("differences");
    for (const BackupDifference& difference : differences) {
        Json::Value entry;
        entry["element"] = difference.element;
        entry["item"] = difference.item;
        entry["what"] = difference.what;
        if (withReasons)
            entry["reason"] = difference.reason;
        document.Item(entry);
    }
    document.EndList();
    document.Member("equal", differences.empty());
}
