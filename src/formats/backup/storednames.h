#pragma once

#include <string>
#include <string_view>

// What the names in a backup mean to a restore, judged by their text alone: on the machine where a
// backup is looked at, its paths may not exist. Portable. Names are UTF-8.

// pathKey gives the key of a full path, on a drive or a network share; two paths of one file have
// the same key: prefixes such as \\?\ are gone, separators are backslashes and single, "." and ".."
// are resolved, dots and blanks at the ends of parts are dropped, letters are lower-case.
//
// Returns: empty for a path that isn't full
std::u16string pathKey(const std::string& path);

// nameKey does the same for a file name.
std::u16string nameKey(const std::string& name);

// caseKey gives texts that differ only in case the same key: letters of the Latin, Greek, Cyrillic
// and Armenian alphabets are lower-case, except rare ones outside Europe.
std::u16string caseKey(const std::string& text);

// isBelow is true for the key of a path in the folder of the other key, or deeper.
bool isBelow(std::u16string_view key, std::u16string_view folder) noexcept;

// isGuardedPlace is true for the key of a path below the folders of the system, of programs or of
// users, on any drive.
bool isGuardedPlace(std::u16string_view key) noexcept;

// nameFault says why the file system would not take a part of a path as it stands; null if it
// would.
const char* nameFault(const std::string& name);

// isDataFile is true for the data files of the personal folder. An export stores one that isn't on
// the disk as an empty one.
bool isDataFile(const std::string& name) noexcept;

// targetWarning says what a quick link opens that is no web address; null if it is one.
const char* targetWarning(const std::string& target);
