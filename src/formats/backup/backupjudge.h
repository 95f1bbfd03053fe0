#pragma once

#include "formats/backup/backupview.h"

// judgeContents finds what the names, targets and contents of a decoded backup say, whatever form
// they are stored in.
void judgeContents(const CBackupView& backup, const FindingSink& sink);
