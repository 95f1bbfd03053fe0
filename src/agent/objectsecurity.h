#pragma once

#include <string>

#include <windows.h>

// allowapppackages gives application packages read and execute on a file or folder.
//
// Returns: nonzero when an entry was added; 0 on failure, and also when the path had the entry already
// Errors:  sets the thread's last error
DWORD allowapppackages(const std::wstring& path);
