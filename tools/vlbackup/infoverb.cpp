#include "shared/backupinput.h"
#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "shared/sha256.h"
#include "verbs.h"

#include <algorithm>

namespace {

using Grade = BackupFinding::Grade;

uint64_t contentSize(const CBackupView& backup)
{
    uint64_t total = 0;
    for (const BackupFile& file : backup.files)
        total += file.content.size();
    return total;
}

void infoText(const CBackupView& backup, const std::string& sum, std::ostream& out)
{
    const auto alien = std::count_if(backup.files.begin(), backup.files.end(),
                                     [](const BackupFile& f) { return f.alien; });
    out << "backup       " << backup.size << " bytes, " << backupVersionText(backup.elementCount)
        << "\nsha-256      " << sum << '\n'
        << "templates    " << backup.files.size() << " (" << alien << " with a full path), "
        << contentSize(backup) << " bytes\n"
        << "quick links  " << backup.links.size() << (backup.oldLinks ? ", old form\n" : "\n")
        << "categories   " << backup.categories.size() << '\n'
        << "settings     " << formName(backup.settings.form) << '\n'
        << "verdict      " << verdictText(out, backup) << " (errors "
        << backup.FindingCount(Grade::error) << ", warnings " << backup.FindingCount(Grade::warning)
        << ", notes " << backup.FindingCount(Grade::note) << ")\n";
}

void infoJson(const CBackupView& backup, const std::string& sum, std::ostream& out)
{
    CJsonDocument document(out, "vlbackup-info-1");
    document.Number("categories", backup.categories.size());
    document.BeginList("elementSizes");
    for (const auto& element : backup.elements)
        document.Number(nullptr, element.size());
    document.EndList();
    document.Number("elements", backup.elementCount);
    document.BeginObject("findings");
    for (const Grade grade : {Grade::error, Grade::warning, Grade::note})
        document.Number(gradeName(grade), backup.FindingCount(grade));
    document.EndObject();
    document.Flag("oldQuicklinks", backup.oldLinks);
    document.Number("quicklinks", backup.links.size());
    document.Text("settings", formName(backup.settings.form));
    document.Text("sha256", sum);
    document.Number("size", backup.size);
    document.Number("templateBytes", contentSize(backup));
    document.Number("templates", backup.files.size());
    document.Text("verdict", verdictName(backup));
    document.Text("version", backupVersionText(backup.elementCount));
}

} // namespace

int verbs::info(const Call& call)
{
    const OpenBackup backup = openBackup(call.input, call.in);
    const std::string sum = sha256Text(backup.input.Bytes());
    if (call.json)
        infoJson(backup.view, sum, call.out);
    else
        infoText(backup.view, sum, call.out);
    return exitStatus::good;
}
