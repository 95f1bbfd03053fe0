#pragma once

#include <string>
#include <vector>

#include <windows.h>

using bytes_t = std::vector<BYTE>;

// Paths are UTF-8, except where a type says otherwise, and may be longer than MAX_PATH.

// readFile reads a whole file; "-" is standard input.
//
// Errors: CToolError
bytes_t readFile(const std::string& path);

// refuseExisting is the check of writeFile alone, for a caller who would do long work in vain.
void refuseExisting(const std::string& path, bool replace);

// writeFile writes a whole file beside its target and moves it there, so that a target is whole or
// untouched.
//
// replace: false refuses a target that exists
// Errors:  CToolError
void writeFile(const std::string& path, const bytes_t& bytes, bool replace);

// copyFile copies bytes and times over what may be there, read-only or not; the folder is made. The
// copy's attributes are normal.
//
// Errors: CToolError
void copyFile(const std::wstring& from, const std::wstring& to);

// isThere is true for a file or folder.
bool isThere(const std::wstring& path);

// besideThisProgram is the full path of a file in this program's folder.
std::wstring besideThisProgram(const wchar_t* name);
