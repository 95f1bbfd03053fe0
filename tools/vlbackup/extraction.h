#pragma once

#include "formats/backup/backupview.h"

#include <string>

// CExtraction writes stored files below a folder, and nowhere else, whatever their names are and
// whatever the folder holds. A file goes by its name, one with a full path into alien/C/... for
// drive C, or alien/UNC/server/... for a network share. Parts that some file system does not take
// as they stand are refused on every one.
class CExtraction
{
public:
    // folder:  UTF-8; made if it is missing, its parent not
    // replace: whether files that exist are replaced
    // input:   name of the backup, which is never replaced
    //
    // Errors: CToolError
    CExtraction(std::string folder, bool replace, std::string input);

    // Write writes beside the target and renames.
    //
    // Returns: the path of the written file; UTF-8
    // Errors:  CToolError; the file that is there stays as it was
    std::string Write(const BackupFile& file) const;

private:
    void MakeFolder(const std::string& name) const;

    std::string m_folder;
    bool m_replace;
    std::string m_input;
};
