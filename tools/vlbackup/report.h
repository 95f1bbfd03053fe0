#pragma once

#include "difference.h"
#include "formats/backup/backupview.h"

#include <ostream>

#include <json/json.h>

// What the commands report of a backup, as text for a reader and as JSON for a program.
void listText(const CBackupView& backup, std::ostream& out);
Json::Value listJson(const CBackupView& backup);

void infoText(const CBackupView& backup, std::ostream& out);
Json::Value infoJson(const CBackupView& backup);

// The findings and the verdict: "sound", "warning" or "error" in JSON.
void verifyText(const CBackupView& backup, std::ostream& out);
Json::Value verifyJson(const CBackupView& backup);

// The differences of two backups and whether there are any that have no reason.
// withReasons: whether reasons were looked for
void diffText(const std::vector<BackupDifference>& differences, std::ostream& out);
Json::Value diffJson(const std::vector<BackupDifference>& differences, bool withReasons);

// base64 of RFC 4648, with padding
std::string base64(std::span<const uint8_t> bytes);
