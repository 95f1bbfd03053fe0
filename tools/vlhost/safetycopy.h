#pragma once

#include "pluginhost.h"
#include "restoreplan.h"

// The safety copy is a folder below the user's local data with all that a restore may delete or
// replace: the plug-in's own backup where it gives one, and, since a backup does not carry all of
// them, the files as they are, the categories with their types, and the settings. The secret is not
// in it. There is one; a new one takes its place once it is complete.

// safetyCopyFolder is where it lies.
//
// Errors: CToolError
std::wstring safetyCopyFolder();

// makeSafetyCopy copies what the plan touches.
//
// Errors: CToolError, with the old copy still in place
void makeSafetyCopy(const CPluginHost& host, const restorePlan_t& plan);

// undoRestore puts the safety copy back: through the plug-in first, so that the agent hears of it,
// then file by file. What the restore wrote and wasn't there before goes, and so do templates that
// came since. What it replaces becomes the safety copy, so that a second undo brings it back.
//
// dryRun:  tells what would be put back and removed, and touches nothing
// Returns: what was put back and removed, for people
// Errors:  CToolError; the copy stays
Json::Value undoRestore(const CPluginHost& host, bool dryRun);
