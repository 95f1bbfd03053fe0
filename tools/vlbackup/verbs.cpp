#include "verbs.h"

#include "shared/backupinput.h"

#include <unordered_set>

OpenBackup::OpenBackup(const std::string& name, std::istream& in)
    : input(name, in), readable(decodeBackup(input.Bytes(), view))
{}

OpenBackup openBackup(const std::string& name, std::istream& in)
{
    OpenBackup backup(name, in);
    if (!backup.readable)
        refuseBackup(name, backup.input.Bytes(), backup.view);
    return backup;
}

const char* verdictName(const CBackupView& backup)
{
    return backup.Sound() ? "sound" : gradeName(backup.Verdict());
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

void refuseTwoInputs(const Call& call)
{
    if (call.input == "-" && call.other == "-")
        throw CToolError("both backups can't come from standard input", "save one to a file",
                         exitStatus::wrongUsage);
}

CToolError missingName(const Call& call, const std::string& name)
{
    return CToolError("no " + name + " in " + shownInput(call.input),
                      "vlbackup ls shows the stored names");
}

int reportUnmet(const Call& call, const CNameChoice& choice)
{
    const std::vector<std::string> unmet = choice.Unmet();
    for (const std::string& name : unmet)
        reportFailure(call.err, "vlbackup", missingName(call, name), call.json);
    return unmet.empty() ? exitStatus::good : exitStatus::failed;
}

size_t findFile(const CBackupView& backup, const std::string& name)
{
    for (size_t i = backup.files.size(); i-- > 0;)
        if (backup.files[i].name == name)
            return i;
    return backup.files.size();
}

std::vector<bool> lastOfEach(size_t count, const std::function<std::u16string(size_t)>& keyOf)
{
    std::vector<bool> last(count);
    std::unordered_set<std::u16string> later;
    for (size_t i = count; i-- > 0;)
        last[i] = later.insert(keyOf(i)).second;
    return last;
}
