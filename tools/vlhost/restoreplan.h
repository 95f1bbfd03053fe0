#pragma once

#include "dashboardstate.h"
#include "formats/backup/backupview.h"

#include <cstdint>
#include <string>
#include <vector>

#include <json/value.h>

// fileAction_t is what becomes of a file.
enum class fileAction_t {
    add,    // it isn't there
    change, // it is there with other bytes
    same,   // it is there with the same bytes; a restore writes it all the same
    remove,
};

// plannedFile_t is one file that a restore or its undoing touches.
struct plannedFile_t {
    std::wstring path; // full
    fileAction_t action = fileAction_t::remove;
    uint64_t bytes = 0; // that it will have; that it has, of a file that goes
    size_t source = 0;  // the place in the list that the bytes come from; not of a file that goes
};
Json::Value jsonOfFiles(const std::vector<plannedFile_t>& files);

// difference_t is something that isn't as it should be after the work. UTF-8
struct difference_t {
    std::string item; // a path, a name
    std::string what;
};

// restorePlan_t is what a restore of one backup does to this user's data.
struct restorePlan_t {
    std::wstring folder;              // the personal folder, as the settings name it
    std::vector<plannedFile_t> files; // templates and data files, each once: written, then removed
    std::wstring quickLinkFile;       // empty if the settings name none
    std::wstring listFile;   // the list of addresses never asked about, if it is written; or empty
    bool categories = false; // whether the categories are replaced
    bool settings = false;   // whether the settings are applied
    std::vector<std::string> strays; // as straysOf gives them

    // Touched is every path whose file a restore may delete or replace.
    std::vector<std::wstring> Touched() const;
};

// planRestore looks at the settings and the folders. Of several files with one target the last
// stays, as in a restore.
//
// Errors: CToolError without a personal folder
restorePlan_t planRestore(const CBackupView& backup);
Json::Value jsonOfPlan(const restorePlan_t& plan, const CBackupView& backup);

// straysOf lists the marked paths that leave the folders of the settings. UTF-8
std::vector<std::string> straysOf(const CBackupView& backup);
inline constexpr char strayText[] = "outside the folders that this profile's settings name";

// deletedByRestore lists the files that any restore deletes now, by full path.
std::vector<std::wstring> deletedByRestore(const std::wstring& folder,
                                           const std::wstring& quickLinkFile);

// personalFolder is the folder of the user's templates, as the settings name it.
//
// Errors: CToolError if they don't
std::wstring personalFolder();

// compareRestored looks at what a restore left and lists what isn't as the backup has it.
std::vector<difference_t> compareRestored(const CBackupView& backup, const restorePlan_t& plan);
