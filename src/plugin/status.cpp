#include "plugin/vlktpages.h"

STDMETHODIMP CVLKTPages::GetStatus(ULONG*, BSTR*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::GetStatus(ULONG*)
{
    return E_NOTIMPL;
}
