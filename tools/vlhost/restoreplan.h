#pragma once

#include <string>
#include <vector>

#include <json/value.h>

#include "backup/blob/backupview.h"
#include "files.h"

// category_t is one value of the categories key as it stands in the registry.
struct category_t {
    std::wstring name;
    DWORD type = REG_SZ;
    bytes_t data;
};

// The settings that a restore applies, in its order.
inline constexpr const wchar_t* restoredSettings[] = {L"show_training_prompt",
                                                      L"open_guard_desk_qa", L"useGrabbingCreds"};

// restorePlan_t is what a restore of one backup does to this user's data.
struct restorePlan_t {
    std::wstring folder;               // the personal folder, as the settings name it
    std::wstring quickLinkFile;        // empty if the settings name none
    std::vector<std::wstring> deleted; // full paths that are there and go
    std::vector<std::wstring> written; // full paths that are written, in the order of the backup
    bool categories = false;           // whether the categories are replaced
    bool settings = false;             // whether the settings are applied
};
restorePlan_t planRestore(const CBackupView& backup);
Json::Value jsonOfPlan(const restorePlan_t& plan);

std::vector<category_t> readCategories();
void writeCategories(const std::vector<category_t>& categories);

// compareRestored looks at what a restore left and lists what isn't as the backup has it.
std::vector<std::string> compareRestored(const CBackupView& backup, const restorePlan_t& plan);
