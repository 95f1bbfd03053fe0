#pragma once

#include "difference.h"
#include "formats/backup/backupview.h"

#include <ostream>

#include <json/json.h>

// What the commands report of a backup, as text for a reader and as JSON for a program.
void listText(const CBackupView& backup, std::ostream& out);
void listJson(const CBackupView& backup, std::ostream& out);

void infoText(const CBackupView& backup, std::ostream& out);
void infoJson(const CBackupView& backup, std::ostream& out);

// verdictName is the word for a verdict in JSON: "sound", "warning" or "error".
const char* verdictName(const CBackupView& backup);
Json::Value findingJson(const BackupFinding& finding);

// The differences of two backups and whether there are any that have no reason.
// withReasons: whether reasons were looked for
void diffText(const std::vector<BackupDifference>& differences, std::ostream& out);
void diffJson(const std::vector<BackupDifference>& differences, bool withReasons,
              std::ostream& out);
