#pragma once

#include "formats/backup/backupview.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <json/value.h>

// Backups as the tools read them: with all findings, those that take a JSON parser included.

// decodeBackup reads the bytes into view, which then needs them. False if a restore would refuse
// them whole.
bool decodeBackup(std::span<const uint8_t> bytes, CBackupView& view);

// beginsAsBackup is true for bytes that begin as a backup does, whatever became of the rest.
bool beginsAsBackup(std::span<const uint8_t> bytes);

// refuseBackup raises the CToolError for bytes that decodeBackup refused: cut, and where, damaged,
// or what they are instead of a backup.
//
// name: of the input, for the message
[[noreturn]] void refuseBackup(const std::string& name, std::span<const uint8_t> bytes,
                               const CBackupView& view);

// gradeName is the word for a grade: "note", "warning" or "error".
const char* gradeName(BackupFinding::Grade grade);

// verdictText is the word for a whole backup: "sound", "sound, with warnings" or "not sound", and
// findingText "error: templates[3]: ..." with the name as it is stored. Both are printable, and in
// colour where the stream shows it.
std::string verdictText(const std::ostream& out, const CBackupView& backup);
std::string findingText(const std::ostream& out, const BackupFinding& finding);

// parseDocument reads a settings document as leniently as a restore does: it may have comments, and
// text after its end. Nothing if it isn't JSON.
std::optional<Json::Value> parseDocument(const std::string& text);
