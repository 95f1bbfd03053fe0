#pragma once

#include "formats/backup/backupview.h"

#include <cstdint>
#include <ostream>
#include <span>
#include <vector>

#include <json/value.h>

// A backup as a JSON document that all of it can be made from again, described in docs/vlbackup.md. What an export would
// have written in other bytes is in it as those bytes, so that no backup is changed by the way through it, except that its
// outer length is written in the shortest form and that bytes after its end are left out.
inline constexpr char backupSchema[] = "vlbackup-backup-1";

// writeBackupJson writes as it goes.
//
// elements: the encoded elements of the outer sequence, at least two
void writeBackupJson(std::span<const std::span<const uint8_t>> elements, std::ostream& out);

// backupOfJson makes the backup.
//
// text:   JSON (RFC 8259)
// Errors: CToolError, whose line says where in the document something is wrong
std::vector<uint8_t> backupOfJson(std::string_view text);
