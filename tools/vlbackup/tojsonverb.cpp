#include "backupjson.h"
#include "shared/exitstatus.h"
#include "verbs.h"
#include "writtenfile.h"

int verbs::toJson(const Call& call)
{
    const OpenBackup backup = openBackup(call.input, call.in);
    CWrittenFile file(call);
    writeBackupJson(backup.view.elements, file.Stream());
    file.Complete("vlbackup-to-json-1");
    return exitStatus::good;
}
