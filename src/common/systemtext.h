#pragma once

#include <windows.h>

#include <string>

// systemText is the system's own text for a status or platform error.
//
// language: as for FormatMessageW; 0 searches several
// Returns:  without the line ends at its end; empty when the system has none
// Errors:   std::bad_alloc
// Source:   FormatMessageW, without its inserts
std::wstring systemText(DWORD status, DWORD language);
