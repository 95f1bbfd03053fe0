#pragma once

#include "files.h"

#include <map>

// CRelocation lays the stored files of full paths, in a backup that is tried elsewhere, below a
// folder: those of one folder into one of its own, with a number for a name. So no path becomes too
// long that isn't, and one that is stays so.
class CRelocation
{
public:
    // below: full, with a backslash at its end
    explicit CRelocation(std::wstring below) : m_below(std::move(below)) {}

    // Move gives the backup with the paths below the folder; all else stays.
    //
    // Errors: CToolError for a path whose last part is no name of a file
    bytes_t Move(std::span<const BYTE> backup);

    // MoveBack is the reverse for a backup of what was restored there; files elsewhere stay where
    // they are.
    bytes_t MoveBack(std::span<const BYTE> backup) const;

    // Folders gives those that the moved files need, each with a backslash at its end.
    std::vector<std::wstring> Folders() const;

private:
    std::wstring Moved(const std::wstring& path);
    const std::wstring& FolderOf(const std::wstring& place, const std::wstring& inside);

    std::wstring m_below;
    std::map<std::wstring, std::wstring> m_folders;   // by fileKey of the place
    std::map<std::wstring, std::wstring> m_originals; // as stored, by fileKey of the moved path
};
