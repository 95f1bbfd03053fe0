#include "plugin/vlktpages.h"

STDMETHODIMP CVLKTPages::GetProperty(ULONG, VARIANT*)
{
    return E_NOTIMPL;
}

// The plug-in has no property that a host may set.
STDMETHODIMP CVLKTPages::SetProperty(LONG, VARIANT*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::GetInfo(ULONG, VARIANT*)
{
    return E_NOTIMPL;
}
