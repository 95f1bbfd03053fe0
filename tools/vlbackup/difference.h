#pragma once

#include "formats/backup/backupview.h"

#include <string>
#include <vector>

// BackupDifference is one thing that two backups don't share.
struct BackupDifference {
    std::string element; // "templates", "quicklinks", "categories", "settings" or "backup"
    std::string item;    // the name of the file, link, category or setting; empty for all of it
    std::string what;
    std::string reason = {}; // why it is no difference after all; empty unless it was looked for
};

// compareBackups compares two backups element by element. Items are matched by name, and by their
// order where a name comes twice; then the order of those that both have is compared, and finally
// the encoded bytes.
//
// Returns: empty only for backups that are equal byte for byte, bytes after their ends left out
std::vector<BackupDifference> compareBackups(const CBackupView& first, const CBackupView& second);

// reasonAfterRestore says why the format itself makes such a difference between a backup and one
// that was taken after restoring it elsewhere; empty for a difference that it does not explain.
std::string reasonAfterRestore(const BackupDifference& difference);
