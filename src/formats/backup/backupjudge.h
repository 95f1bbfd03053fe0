#pragma once

#include "formats/backup/backupview.h"

#include <vector>

// judgeContents adds what the names, targets and contents of a decoded backup say, whatever form
// they are stored in.
void judgeContents(const CBackupView& backup, std::vector<BackupFinding>& findings);
