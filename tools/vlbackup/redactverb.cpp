#include "redaction.h"
#include "shared/backupinput.h"
#include "shared/exitstatus.h"
#include "verbs.h"
#include "writtenfile.h"

int verbs::redact(const Call& call)
{
    const OpenBackup backup(call.input, call.in);
    const std::span<const uint8_t> bytes = backup.input.Bytes();
    if (!beginsAsBackup(bytes))
        refuseBackup(call.input, bytes, backup.view);
    CWrittenFile file(call);
    redactBackup(bytes, file.Stream());
    file.Complete("vlbackup-redact-1");
    return exitStatus::good;
}
