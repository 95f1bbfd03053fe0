#include "formats/text/printable.h"
#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "verbs.h"

#include <iomanip>

namespace {

void settingsJson(const BackupSettings& settings, CJsonDocument& document)
{
    document.BeginObject("settings");
    if (settings.form == SettingsForm::document)
        document.Text("document", settings.document);
    if (settings.form == SettingsForm::legacy)
        document.Base64("dontPromptList", settings.dontPromptList);
    document.Text("form", formName(settings.form));
    if (settings.form == SettingsForm::legacy) {
        document.Text("hotKey", settings.hotKey);
        document.Flag("showPrompt", settings.showPrompt);
    }
    document.EndObject();
}

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
    CJsonDocument document(out, "vlbackup-ls-1");
    document.BeginList("categories");
    for (const BackupCategory& category : backup.categories) {
        document.BeginObject(nullptr);
        document.Text("name", category.name);
        document.Text("text", category.text);
        document.EndObject();
    }
    document.EndList();
    document.BeginList("quicklinks");
    for (const BackupLink& link : backup.links) {
        document.BeginObject(nullptr);
        document.Text("manifest", link.manifest);
        document.Text("manifestid", link.manifestid);
        document.Text("name", link.name);
        document.Number("profile", link.profile);
        document.Text("target", link.target);
        document.Flag("wocred", link.wocred);
        document.EndObject();
    }
    document.EndList();
    settingsJson(backup.settings, document);
    document.BeginList("templates");
    for (const BackupFile& file : backup.files) {
        document.BeginObject(nullptr);
        document.Flag("alien", file.alien);
        document.Text("name", file.name);
        document.Number("size", file.content.size());
        document.Text("target", file.target);
        document.EndObject();
    }
    document.EndList();
}

} // namespace

int verbs::ls(const Call& call)
{
    const OpenBackup backup = openBackup(call.input, call.in);
    if (call.json)
        listJson(backup.view, call.out);
    else
        listText(backup.view, call.out);
    return exitStatus::good;
}
