#pragma once

#include <windows.h>

#include <string>

// thisModule is the module that this code is linked into: the DLL, or a test or tool program.
HMODULE thisModule() noexcept;

// moduleFileName is the full path of a module's file; null names the process's program.
//
// Returns: at most 260 characters; empty on failure
// Source:  GetModuleFileNameW
std::wstring moduleFileName(HMODULE module);
