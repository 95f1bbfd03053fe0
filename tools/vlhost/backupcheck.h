#pragma once

#include "formats/backup/backupview.h"
#include "restoreplan.h"

#include <vector>

// The plug-in silently stores as empty what it can't read, and leaves out what it doesn't
// understand. So a backup is compared with what is there.

// refuseBackupOfNothing fails when the plug-in has no settings to find the user's data by.
//
// Errors: CToolError
void refuseBackupOfNothing();

// backupContents_t counts what is in a backup.
struct backupContents_t {
    size_t templates = 0;
    size_t dataFiles = 0; // that are on the disk; a backup has an empty one for each that isn't
    size_t quickLinks = 0;
    size_t categories = 0;
};

// compareWithDisk looks for everything that the plug-in would list now.
//
// contents: receives the counts
// Returns:  what is missing, other than on the disk, or can't be compared
std::vector<difference_t> compareWithDisk(const CBackupView& backup, backupContents_t& contents);
