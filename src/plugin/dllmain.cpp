#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE, DWORD, void*)
{
    return TRUE;
}
