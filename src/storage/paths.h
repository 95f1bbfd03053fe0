#pragma once

#include <string>

// Where things live on this machine, and the small path tools. Paths are UTF-16. Nothing here
// raises on a missing path: a failed look-up is an empty text, and the caller decides what that
// means. Every operation may be called on any thread. The sources: bindir.cpp (the bin folder),
// userfolders.cpp (the environment and the user's folders), shortpath.cpp and, for the rest,
// pathtools.cpp.

// The bin folder. There are three discoveries with rules of their own (bindir_discover,
// bindir_plain and bindir_view64), and they differ on purpose.
// Source: the text value BinDir of a key below HKEY_LOCAL_MACHINE, at most 520 bytes, never
//         expanded

// bindir_fromkey reads BinDir of one key.
//
// nativeView: false reads the 32-bit view
// Returns:    with a trailing separator; empty if there is no such text, or it is damaged (an odd
//             number of bytes, no zero at its end)
std::wstring bindir_fromkey(const std::wstring& subkey, bool nativeView);

// bindir_registry tries SOFTWARE\Veltrano\Applications\KRS, then SOFTWARE\Veltrano\Applications.
std::wstring bindir_registry(bool nativeView);

// bindir_default is the folder below the 32-bit program files folder; for the native view it is the
// relative path "x64\", which the settings link joins to the plug-in's own folder.
std::wstring bindir_default(bool nativeView);

// bindir_discover is the whole chain: the registry, for the native view then the 32-bit view's
// folder followed by "x64\", then bindir_default. Never empty.
std::wstring bindir_discover(bool nativeView);

// bindir_file is a file of the native view's bin folder.
std::wstring bindir_file(const std::wstring& fileName);

// bindir_plain is the bin folder for prefixes and templates, from SOFTWARE\Veltrano\Applications
// alone.
//
// Returns: with a trailing separator; the folder below %ProgramFiles% if the key does not open,
//          empty if it opens and has no good BinDir
std::wstring bindir_plain();

// templates_bindir is bindir_plain followed by "templates\".
std::wstring templates_bindir();

// bindir_view64 is the bin folder from which the console program is started, from the 64-bit view
// of SOFTWARE\Veltrano\Applications.
//
// Returns: with a trailing backslash; empty if the key does not open, a lone backslash if BinDir
//          can't be read
std::wstring bindir_view64();

// envvalue is the value of an environment variable.
//
// Returns: empty also when the value has 260 characters or more
// Errors:  sets the thread's last error when there is no value
std::wstring envvalue(const std::wstring& name);

// The user's folders, each with a trailing separator. Without one of them the text is empty and an
// error is traced with the last error as its status.
// Source: APPDATA; LOCALAPPDATA, or the shell's local application data folder, which is then made

std::wstring appdata_templatesdir(); // Veltrano\KRS\Templates\ below the roaming folder
std::wstring appdata_rootdir();      // Veltrano\KRS\ below the roaming folder
std::wstring localappdata_dir();     // the local folder itself
std::wstring localappdata_rootdir(); // Veltrano\KRS\ below the local folder

// sysdir is the system's folder with a trailing backslash.
//
// Source: GetSystemDirectoryW
std::wstring sysdir();

// addslash appends a backslash unless path is empty or ends in a separator of either kind.
std::wstring addslash(const std::wstring& path);

// unifyslashes makes all separators like the first one of path.
std::wstring unifyslashes(const std::wstring& path);

// lowerpath lowers A to Z; in the locale that a program starts with no other character changes.
std::wstring lowerpath(const std::wstring& path);

// shortpath is path in lower case and with one separator, a known folder in it replaced by kri::,
// krs::, usr::, dbg:: or bin::, the first of them that is found anywhere in path; forward slashes
// in path count as backslashes there. For traces and comparing: it can't be turned back into a
// path. Each folder is looked up when it is first needed and remembered until the module ends. A
// folder that is not known counts as found at the front of every path.
std::wstring shortpath(const std::wstring& path);

// shortpath_utf8 is shortpath of a path in UTF-8.
std::wstring shortpath_utf8(const std::string& path);

// expandenv expands references such as %TEMP%.
//
// Returns: empty on failure
// Source:  ExpandEnvironmentStringsW
std::wstring expandenv(const std::wstring& text);

// collapseenv is the form in which a path is stored: the first occurrence of the value of appdata,
// or else of localappdata, becomes the reference. The comparison is exact in case; a variable that
// is not set counts as found at the front of every path.
std::wstring collapseenv(const std::wstring& path);

// longform puts "\\?\" in front of a path of 249 characters or more, unless it has it already.
std::wstring longform(const std::wstring& path);

// hasalienmark is true if a stored name starts with "alien|", exact in case.
bool hasalienmark(const std::wstring& text);

// stripalienmark is text without that mark.
std::wstring stripalienmark(const std::wstring& text, bool& hadMark);

// direxists is true if a search for everything in the folder finds anything. An empty path means
// the current folder.
bool direxists(const std::wstring& path);

// fileexists is true if a search for path finds an entry that is no folder.
bool fileexists(const std::wstring& path);

// makedirs makes every missing level of a folder.
//
// path:    may start with "\\?\"; the levels above the last are found at their separators
// Returns: true if the folder is there now
// Errors:  false leaves the last error of the CreateDirectoryW that failed; 183 if the folder is
//          there, but could not be searched
bool makedirs(const std::wstring& path);
