#pragma once

#include <windows.h>

// osVersion_t is the version that the system reports to this process. A program without a
// compatibility manifest reads 6.2 on every later system.
struct osVersion_t {
    DWORD platform = 0; // 2 is the NT family
    DWORD major = 0;
    DWORD minor = 0;

    bool isNt() const noexcept { return platform == VER_PLATFORM_WIN32_NT; }
    bool atLeast(DWORD wantedMajor, DWORD wantedMinor) const noexcept
    {
        return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
    }
};

// readOsVersion asks the system at each call.
//
// Returns: all zero when that fails
// Source:  GetVersionExW
osVersion_t readOsVersion() noexcept;

// osVersionAtStart is the version read once, when the module was loaded.
const osVersion_t& osVersionAtStart() noexcept;
