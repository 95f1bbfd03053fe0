#include "common/osversion.h"
#include "resources/muimodule.h"
#include "resources/resourcemodule.h"

#include <windows.h>

// Current systems redirect resource look-ups to the language file by themselves; on older ones the
// file is chosen here, once. No thread, no trace: the loader's lock is held.
BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (systemRedirectsResources(osVersionAtStart()))
        return TRUE;
    if (reason == DLL_PROCESS_ATTACH)
        setResourceModule(LoadMuiModule(instance));
    else if (reason == DLL_PROCESS_DETACH)
        if (const HMODULE language = setResourceModule(nullptr))
            FreeLibrary(language);
    return TRUE;
}
