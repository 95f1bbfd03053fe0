#pragma once

#include <string>
#include <vector>

#include <windows.h>

using bytes_t = std::vector<BYTE>;

// readFile reads a whole file; "-" is standard input. Errors: CToolError.
bytes_t readFile(const std::string& path);

// writeFile writes a whole file beside its target and moves it there, so that a target is whole or
// untouched.
//
// replace: false refuses a target that exists
// Errors:  CToolError
void writeFile(const std::string& path, const bytes_t& bytes, bool replace);
