#include "report.h"

#include "formats/text/printable.h"
#include "shared/backupinput.h"

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

auto countOf(const CBackupView& backup, Grade grade)
{
    return std::count_if(backup.findings.begin(), backup.findings.end(),
                         [grade](const BackupFinding& f) { return f.grade == grade; });
}

const char* verdictName(const CBackupView& backup)
{
    return backup.Sound() ? "sound" : gradeName(backup.Verdict());
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

Json::Value listJson(const CBackupView& backup)
{
    Json::Value value;
    value["templates"] = Json::arrayValue;
    for (const BackupFile& file : backup.files) {
        Json::Value entry;
        entry["name"] = file.name;
        entry["size"] = Json::UInt64{file.content.size()};
        entry["target"] = file.target;
        entry["alien"] = file.alien;
        value["templates"].append(std::move(entry));
    }
    value["quicklinks"] = Json::arrayValue;
    for (const BackupLink& link : backup.links) {
        Json::Value entry;
        entry["name"] = link.name;
        entry["target"] = link.target;
        entry["manifest"] = link.manifest;
        entry["profile"] = link.profile;
        entry["manifestid"] = link.manifestid;
        entry["wocred"] = link.wocred;
        value["quicklinks"].append(std::move(entry));
    }
    value["categories"] = Json::arrayValue;
    for (const BackupCategory& category : backup.categories) {
        Json::Value entry;
        entry["name"] = category.name;
        entry["text"] = category.text;
        value["categories"].append(std::move(entry));
    }
    value["settings"] = settingsJson(backup.settings);
    return value;
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
        << "verdict      " << verdictText(backup) << " (errors " << countOf(backup, Grade::error)
        << ", warnings " << countOf(backup, Grade::warning) << ", notes "
        << countOf(backup, Grade::note) << ")\n";
}

Json::Value infoJson(const CBackupView& backup)
{
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
    value["verdict"] = verdictName(backup);
    for (const Grade grade : {Grade::error, Grade::warning, Grade::note})
        value["findings"][gradeName(grade)] = Json::Int64{countOf(backup, grade)};
    return value;
}

void verifyText(const CBackupView& backup, std::ostream& out)
{
    for (const BackupFinding& finding : backup.findings)
        out << printable(findingText(finding)) << '\n';
    out << verdictText(backup) << '\n';
}

Json::Value verifyJson(const CBackupView& backup)
{
    Json::Value value;
    value["verdict"] = verdictName(backup);
    value["findings"] = Json::arrayValue;
    for (const BackupFinding& finding : backup.findings) {
        Json::Value entry;
        entry["grade"] = gradeName(finding.grade);
        entry["where"] = finding.where;
        entry["what"] = finding.what;
        value["findings"].append(std::move(entry));
    }
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

Json::Value diffJson(const std::vector<BackupDifference>& differences, bool withReasons)
{
    Json::Value value;
    value["equal"] = differences.empty();
    value["differences"] = Json::arrayValue;
    for (const BackupDifference& difference : differences) {
        Json::Value entry;
        entry["element"] = difference.element;
        entry["item"] = difference.item;
        entry["what"] = difference.what;
        if (withReasons)
            entry["reason"] = difference.reason;
        value["differences"].append(std::move(entry));
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
