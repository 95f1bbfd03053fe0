#include "formats/text/printable.h"
#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "verbs.h"

#include <iomanip>
#include <utility>

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

void listText(const CBackupView& backup, CNameChoice& choice, std::ostream& out)
{
    // A title of nothing is left out where names were given.
    const auto list = [&](const char* title, const auto& items, const auto& show) {
        bool titled = choice.All();
        if (titled)
            out << title << '\n';
        for (const auto& item : items) {
            if (!choice.Has(item.name))
                continue;
            if (!std::exchange(titled, true))
                out << title << '\n';
            show(item);
        }
    };
    list("templates", backup.files, [&](const BackupFile& file) {
        out << std::setw(10) << file.content.size() << "  " << printable(file.name) << '\n';
    });
    list("quick links", backup.links, [&](const BackupLink& link) {
        out << "  " << printable(link.name) << " -> " << printable(link.target) << "  ("
            << printable(link.manifest) << ", profile " << link.profile << ", id "
            << printable(link.manifestid) << (link.wocred ? ", without credentials)\n" : ")\n");
    });
    list("categories", backup.categories, [&](const BackupCategory& category) {
        out << "  " << printable(category.name) << " = " << printable(category.text) << '\n';
    });
    if (!choice.Has("settings"))
        return;
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

void listJson(const CBackupView& backup, CNameChoice& choice, std::ostream& out)
{
    CJsonDocument document(out, "vlbackup-ls-1");
    document.BeginList("categories");
    for (const BackupCategory& category : backup.categories) {
        if (!choice.Has(category.name))
            continue;
        document.BeginObject(nullptr);
        document.Text("name", category.name);
        document.Text("text", category.text);
        document.EndObject();
    }
    document.EndList();
    document.BeginList("quicklinks");
    for (const BackupLink& link : backup.links) {
        if (!choice.Has(link.name))
            continue;
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
    if (choice.Has("settings"))
        settingsJson(backup.settings, document);
    document.BeginList("templates");
    for (const BackupFile& file : backup.files) {
        if (!choice.Has(file.name))
            continue;
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
    CNameChoice choice(call.names);
    if (call.json)
        listJson(backup.view, choice, call.out);
    else
        listText(backup.view, choice, call.out);
    return reportUnmet(call, choice);
}
