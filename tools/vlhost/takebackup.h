#pragma once

#include "files.h"
#include "pluginhost.h"

// backup_t is what the plug-in gave.
struct backup_t {
    bytes_t bytes;                        // decodable
    std::vector<std::string> secretNames; // of the secrets that the host has to keep, UTF-8
};

// takeBackup asks for a backup and judges the answer, since the status says nothing.
//
// Errors: CToolError for an output that wasn't filled, an empty array, or bytes that do not decode
backup_t takeBackup(const CPluginHost& host);

// takeBackupIfAny gives no bytes where takeBackup raises: the user may have nothing yet.
bytes_t takeBackupIfAny(const CPluginHost& host);
