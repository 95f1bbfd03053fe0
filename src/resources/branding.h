#pragma once

#include <windows.h>

#include <string>

// CBranding is the resource-only DLL that carries the product's name and icon. It is loaded when
// first needed, as a data file, and stays until the process ends.
class CBranding
{
public:
    // LoadResourceDLL gives the branding DLL and loads it if that hasn't been done. After a
    // failure, which is traced, the next call tries again.
    //
    // Returns: lent; null if there is none
    // Source:  value DLLPath below SOFTWARE\Veltrano\Branding\Common in HKEY_LOCAL_MACHINE, or
    //          below the key that string 900 of the process's program names; no environment
    //          strings are expanded in it
    static HMODULE LoadResourceDLL();

    // DllPath is the path of the loaded branding DLL as the registry gave it; empty if none is
    // loaded.
    static std::wstring DllPath();
};
