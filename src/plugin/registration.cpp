#include <windows.h>

STDAPI DllRegisterServer()
{
    return E_NOTIMPL;
}

STDAPI DllUnregisterServer()
{
    return E_NOTIMPL;
}
