#pragma once

#include <windows.h>

// resourceModule is the module that the strings are read from: this module itself, until
// setResourceModule says otherwise. Null reads the strings of the process's program.
HMODULE resourceModule() noexcept;

// setResourceModule exchanges the module in one step; the entry routine does so once, under the
// loader's lock.
//
// module:  borrowed; may be null
// Returns: the module before
HMODULE setResourceModule(HMODULE module) noexcept;
