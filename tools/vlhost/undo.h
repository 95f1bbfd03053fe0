#pragma once

#include "restoreplan.h"
#include "safetycopy.h"

#include <optional>

// undoPlan_t is what the undoing of a restore does.
struct undoPlan_t {
    std::vector<unsigned> copies; // that are put back. For a file in several, the first decides
    std::string folder;           // the personal folder that they are of
    std::vector<copiedFile_t> sources;
    std::vector<plannedFile_t> files; // those that are put back, then those that go
    dashboardState_t dashboard;
    std::vector<copiedSetting_t> settings;
};

// chooseCopies gives the copies that are put back, on loan from all.
//
// all:    the oldest first
// number: a copy to be put back alone. Without one it is the newest, and the newest of an undoing
//         brings back what that replaced. After work that was not finished it is the state before
//         that work, however often it was tried, or what an undoing was to put back.
// Errors: CToolError without such a copy
std::vector<const safetyCopy_t*> chooseCopies(const std::vector<safetyCopy_t>& all,
                                              std::optional<unsigned> number);

// planUndo looks at the copies and at what is there now: all that they know of, and the templates
// and the quick link file that came since.
//
// Errors: CToolError if the personal folder is another one now
undoPlan_t planUndo(const std::vector<const safetyCopy_t*>& copies);
Json::Value jsonOfPlan(const undoPlan_t& plan);

// finishCopy marks the copy whose work ran to its end, and removes those that nobody needs any more.
//
// Errors: CToolError
void finishCopy(CSafetyCopies& copies, unsigned number);

// putBack does it, file by file, then categories and settings.
//
// Returns: what could not be put back or removed
std::vector<difference_t> putBack(const undoPlan_t& plan);
