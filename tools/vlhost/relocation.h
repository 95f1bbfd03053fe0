#pragma once

#include "files.h"

// Stored files of full paths, in a backup that is tried elsewhere.

// moveFiles gives a backup whose stored files of full paths lie below a folder, "C:\Logons\a.vlm" as
// "C\Logons\a.vlm" there; all else stays.
//
// below:   full, with a backslash at its end
// folders: receives their new folders, each once
// Errors:  CToolError for a path that would leave the folder, or that isn't full
bytes_t moveFiles(std::span<const BYTE> backup, const std::wstring& below,
                  std::vector<std::wstring>& folders);

// moveFilesBack is the reverse; files elsewhere stay where they are.
bytes_t moveFilesBack(std::span<const BYTE> backup, const std::wstring& below);
