#include "runtime/runtime.h"

// The toolchain's own entry point: constructors, DllMain, destructors.
extern "C" BOOL WINAPI DllMainCRTStartup(HANDLE instance, DWORD reason, void* reserved);

BOOL WINAPI vlDllEntry(HINSTANCE instance, DWORD reason, void* reserved)
{
    if (reason == DLL_PROCESS_ATTACH)
        seedStackCheck();
    const bool processEnds = reason == DLL_PROCESS_DETACH && reserved;
    return processEnds || DllMainCRTStartup(instance, reason, reserved);
}
