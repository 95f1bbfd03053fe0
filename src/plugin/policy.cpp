#include "plugin/vlktpages.h"

STDMETHODIMP CVLKTPages::DisableLocal(ULONG)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::Subscribe()
{
    return E_NOTIMPL;
}
