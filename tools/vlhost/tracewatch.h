#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

// Trace files and the processes that write them.

// traceFile_t is one trace file.
struct traceFile_t {
    std::wstring name; // without the folder
    DWORD process = 0; // as the name says; 0 for a name without
    uint64_t size = 0; // bytes
    FILETIME modified{};
    bool open = false; // a process writes it
};

// traceFilesIn lists the trace files of a folder, the newest last.
std::vector<traceFile_t> traceFilesIn(const std::wstring& folder);

// processesWith lists the other processes that have loaded a module of that file name and may be
// looked into.
std::vector<DWORD> processesWith(const std::wstring& moduleName);

// checkWatchable refuses a process that can't be waited for, or that hasn't loaded a module of that
// file name and so will never follow.
//
// Errors: CToolError
void checkWatchable(DWORD process, const std::wstring& moduleName);

// followed_t is what became of one process.
enum class followed_t { yes, ended, no };

// waitUntilFollowed waits until the process has followed the switch. What proves it is the file of
// the module in that process: after a switch to a file it is there and open, after any other it is
// not open, since the tracer opens it with its first record and closes it when it turns away from
// it.
//
// folder:   of the trace files, whose names are stamped
// toFile:   what is waited for
// deadline: at which the result is no
// Returns:  ended also for a process that is not there any more
followed_t waitUntilFollowed(DWORD process, const std::wstring& moduleName,
                             const std::wstring& folder, bool toFile,
                             std::chrono::steady_clock::time_point deadline);
