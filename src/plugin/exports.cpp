#include "atl/commodule.h"

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out)
{
    return _AtlComModule.GetClassObject(clsid, iid, out);
}
