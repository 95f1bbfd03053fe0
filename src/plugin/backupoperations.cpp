#include "plugin/vlktpages.h"

STDMETHODIMP CVLKTPages::GetStorageData(VARIANT*, VARIANT*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::SetStorageData(VARIANT*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::SetStorageData2(ULONG, VARIANT*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::SetPluginData(ULONG, const BYTE*, ULONG, const BYTE*)
{
    return E_NOTIMPL;
}
