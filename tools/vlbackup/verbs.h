#pragma once

#include "formats/backup/backupview.h"
#include "namechoice.h"
#include "shared/inputfile.h"
#include "shared/toolerror.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

// Call is one run of a verb: its arguments, and the streams.
struct Call {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    std::string input = {};              // the backup, or what the verb reads in its place
    std::string other = {};              // a second backup, a stored name, or a text
    std::vector<std::string> names = {}; // of ls and extract, maybe with * and ?
    std::string output = {};             // a file or a folder
    bool json = false;
    bool force = false;
    bool strict = false; // of verify
    bool dryRun = false; // of merge
    std::string prefer = {};
    bool restored = false; // of diff
    bool live = false;     // of diff
    bool fold = false;     // of find
    bool all = false;      // of hex
};

// Each verb is in a file of its own, and its options in commands.cpp. It returns the exit status.
//
// Errors: CToolError
namespace verbs {

int cat(const Call& call);
int diff(const Call& call);
int extract(const Call& call);
int find(const Call& call);
int fromJson(const Call& call);
int hex(const Call& call);
int info(const Call& call);
int ls(const Call& call);
int merge(const Call& call);
int recover(const Call& call);
int redact(const Call& call);
int toJson(const Call& call);
int verify(const Call& call);

} // namespace verbs

// OpenBackup is a backup's bytes and the view of them, with the findings counted only.
struct OpenBackup {
    OpenBackup(const std::string& name, std::istream& in);

    CInput input;
    CBackupView view{[](const BackupFinding&) {}};
    bool readable;
};

// openBackup opens one that a restore would not refuse whole.
//
// Errors: CToolError
OpenBackup openBackup(const std::string& name, std::istream& in);

// verdictName is the word for a verdict in JSON: "sound", "warning" or "error".
const char* verdictName(const CBackupView& backup);

// formName is the word for the form of the settings.
const char* formName(SettingsForm form);

// refuseTwoInputs fails if both backups are to come from standard input.
void refuseTwoInputs(const Call& call);

// missingName is the failure for a stored name that the backup doesn't have.
CToolError missingName(const Call& call, const std::string& name);

// reportUnmet reports the names that have chosen nothing, and gives the exit status.
int reportUnmet(const Call& call, const CNameChoice& choice);

// findFile finds a stored file by its name. Of several with the same name it is the last, which a restore leaves on the
// disk. The number of files if there is none.
size_t findFile(const CBackupView& backup, const std::string& name);

// lastOfEach says of each item of a list whether a restore leaves it: of several with the same key it keeps the last.
std::vector<bool> lastOfEach(size_t count, const std::function<std::u16string(size_t)>& keyOf);
