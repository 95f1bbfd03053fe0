#pragma once

#include "formats/backup/backupview.h"

#include <functional>
#include <string>

// BackupDifference is one thing that two backups don't share.
struct BackupDifference {
    std::string element; // "templates", "quicklinks", "categories", "settings" or "backup"
    std::string item;    // the name of the file, link, category or setting; empty for all of it
    std::string what;
    std::string reason = {}; // why it is no difference after all; empty unless it was looked for
};

using DifferenceSink = std::function<void(BackupDifference difference)>;

// compareBackups compares two backups element by element. Items are matched by name, and by their order where a name
// comes twice; then the order of those that both have is compared, and finally the encoded bytes. Takes 20 bytes for each
// pair of entries, besides what the views hold.
//
// sink: gets each difference when it is found; none for backups that are equal byte for byte, bytes after their ends left
//       out
void compareBackups(const CBackupView& first, const CBackupView& second,
                    const DifferenceSink& sink);

// reasonAfterRestore says why the format itself makes such a difference between a backup and one
// that was taken after restoring it elsewhere; empty for a difference that it does not explain.
std::string reasonAfterRestore(const BackupDifference& difference);
