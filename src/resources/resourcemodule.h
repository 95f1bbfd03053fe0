#pragma once

#include <windows.h>

// ResourceModule is the module that the strings are read from: this module itself, until
// SetResourceModule says otherwise. Null reads the strings of the process's program.
HMODULE ResourceModule() noexcept;

// SetResourceModule exchanges the module in one step; the entry routine does so once, under the
// loader's lock.
//
// module:  borrowed; may be null
// Returns: the module before
HMODULE SetResourceModule(HMODULE module) noexcept;
