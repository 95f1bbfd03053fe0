#pragma once

#include <windows.h>
#include <comdef.h>

// statusFromError turns a platform error into a status. A value that has any bit of 0x1FFF0000 set
// is a status already and comes back unchanged, and so does one below 1.
//
// error:   as from GetLastError or a registry call
// Returns: 0x80070000 or-ed with the low 16 bits, or error unchanged
HRESULT statusFromError(DWORD error) noexcept;

// raiseStatus throws _com_error with that status. The error frame of the plug-in's operations
// returns it.
[[noreturn]] void raiseStatus(HRESULT status);

// raiseError throws _com_error with statusFromError(error). Take the error before anything else can
// change it.
[[noreturn]] void raiseError(DWORD error);

// raiseLastError is raiseError of the calling thread's last error.
[[noreturn]] void raiseLastError();
