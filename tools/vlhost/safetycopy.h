#pragma once

#include "pluginhost.h"
#include "restoreplan.h"

// The safety copy is a folder below the user's local data with all that a restore is about to delete or replace: the
// plug-in's own backup where it gives one, the files as they are, the categories and the settings. There is one; a
// new one takes its place once it is complete.

// safetyCopyFolder is where it lies. Errors: CToolError.
std::wstring safetyCopyFolder();

// makeSafetyCopy copies what the plan touches. Errors: CToolError, with the old copy still in place.
void makeSafetyCopy(const CPluginHost& host, const restorePlan_t& plan);

// undoRestore puts the safety copy back: through the plug-in first, so that the agent hears of it, then file by file,
// since a backup does not carry all of a file. What the restore wrote and wasn't there before goes.
//
// Returns: what was put back, for people
// Errors:  CToolError; the copy stays
Json::Value undoRestore(const CPluginHost& host);
