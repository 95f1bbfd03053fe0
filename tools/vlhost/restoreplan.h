#pragma once

#include <string>
#include <vector>

#include <json/value.h>

#include "backup/blob/backupview.h"
#include "dashboardstate.h"

// The settings that a restore applies, in its order.
inline constexpr const wchar_t* restoredSettings[] = {L"show_training_prompt",
                                                      L"open_guard_desk_qa", L"useGrabbingCreds"};

// restorePlan_t is what a restore of one backup does to this user's data.
struct restorePlan_t {
    std::wstring folder;               // the personal folder, as the settings name it
    std::wstring quickLinkFile;        // empty if the settings name none
    std::vector<std::wstring> deleted; // full paths that are there and go
    std::vector<std::wstring> written; // full paths that are written, in the order of the backup
    std::wstring listFile;             // the list of addresses never asked about, if it is written
    bool categories = false;           // whether the categories are replaced
    bool settings = false;             // whether the settings are applied
};

// planRestore looks at the settings and the folder.
//
// Errors: CToolError without a personal folder
restorePlan_t planRestore(const CBackupView& backup);
Json::Value jsonOfPlan(const restorePlan_t& plan);

// deletedByRestore lists the files that any restore deletes now, by full path.
std::vector<std::wstring> deletedByRestore(const std::wstring& folder,
                                           const std::wstring& quickLinkFile);

// personalFolder is the folder of the user's templates, as the settings name it.
//
// Errors: CToolError if they don't
std::wstring personalFolder();

// compareRestored looks at what a restore left and lists what isn't as the backup has it.
std::vector<std::string> compareRestored(const CBackupView& backup, const restorePlan_t& plan);
