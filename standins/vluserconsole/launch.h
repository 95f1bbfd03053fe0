#pragma once

#include <string>
#include <vector>

// launch_t is what the console was started with:
// VLUserConsole.exe [--log FILE] [--no-window] [TARGET].
struct launch_t {
    std::wstring commandLine;            // whole, as the process got it
    std::vector<std::wstring> arguments; // without the program's own name
    std::wstring target; // such as "{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0"; may be empty
    std::wstring plugin; // the target's three parts; empty if it isn't of this form
    std::wstring page;
    std::wstring item;
    std::wstring log; // full path of the log file
    bool window = true;
    std::wstring complaint; // why the command line can't be followed; empty if it can
};

// readLaunch parses the command line. An option overrides its environment variable.
//
// Source: GetCommandLineW; the environment variables VLUSERCONSOLE_LOG and VLUSERCONSOLE_NO_WINDOW
//         (not empty), for those who start the console through a plug-in; %LOCALAPPDATA%
launch_t readLaunch();

// writeLog appends one line of JSON in UTF-8 to the log, and makes its folders if need be.
//
// Returns: 0 or the platform's error
unsigned long writeLog(const launch_t& launch);
