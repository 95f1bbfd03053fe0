#pragma once

#include "commands.h"

#include <optional>

// undoRestore is 'vlhost restore --undo': it shows the plan and carries it out.
//
// number: of the safety copy that is put back; without one chooseCopies chooses
// Errors: CToolError
void undoRestore(std::optional<unsigned> number, bool dryRun, const options_t& options);

// listUndo is 'vlhost restore --list-undo'.
void listUndo(const options_t& options);
