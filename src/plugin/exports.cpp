#include "atl/commodule.h"

// There is no DllCanUnloadNow: a host frees the DLL when it likes, and the module's locks only
// count.
STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out)
{
    return _AtlComModule.GetClassObject(clsid, iid, out);
}
