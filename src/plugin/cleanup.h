#pragma once

#include <windows.h>

#include <cstdint>

// AddCleanupLine appends one line to Cleanup.txt in the installation folder, which lists the user
// data that the uninstaller has to remove. The file is UTF-16 with a byte order mark; one without
// the mark loses its contents.
//
// kind, path: must not be null or empty
// flags:      written in decimal; their meaning is the uninstaller's
// name:       a value's name; null for none. An empty name is written as one blank.
// Returns:    S_OK or the failure, which is traced
// Source:     HKEY_LOCAL_MACHINE, SOFTWARE\Veltrano, value VeltranoPath
HRESULT AddCleanupLine(const wchar_t* kind, const wchar_t* path, uint32_t flags,
                       const wchar_t* name);
