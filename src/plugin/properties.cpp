#include "atl/comutil.h"
#include "common/status.h"
#include "plugin/errorframe.h"
#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "tracecore/tracer.h"

#include <cwchar>

using namespace VLONLINEIDSLib;
using ATL::CComBSTR;
using ATL::CComVariant;
using tracecore::traceScope_t;

namespace {

constexpr auto unknownProperty = static_cast<HRESULT>(0x80070000u | ERROR_UNKNOWN_PROPERTY);

// iconLocation is the branding DLL's path, a comma and the icon's number; the path is empty without
// that DLL.
BSTR iconLocation()
{
    CBranding::LoadResourceDLL();
    CComBSTR location(CBranding::DllPath());
    wchar_t number[100] = {};
    _snwprintf(number, 99, L"%d", IDI_PRODUCT);
    location.Append(L",");
    location.Append(number);
    return location.Detach();
}

// typeOf gives the type tag of a property, VT_EMPTY for one that the plug-in doesn't have.
VARTYPE typeOf(ULONG id) noexcept
{
    switch (id) {
    case propertyName:
    case propertyIconLocation:
    case propertyFixedName:
    case propertyDescription:
    case propertyExplanation:
        return VT_BSTR;
    case propertyKind:
        return VT_UI4;
    case propertySecurityLevel:
        return VT_I4;
    case propertyNotifications:
        return VT_ARRAY | VT_VARIANT;
    default:
        return VT_EMPTY;
    }
}

} // namespace

STDMETHODIMP CVLKTPages::GetProperty(ULONG id, VARIANT* value)
{
    const traceScope_t scope("CVLKTPages::GetProperty");
    try {
        if (!value)
            raiseStatus(E_POINTER);
        VariantClear(value); // before the id is looked at, so that an unknown one empties it too
        const VARTYPE type = typeOf(id);
        if (type == VT_EMPTY)
            return unknownProperty;
        // The tag is set before the payload is computed, and stays if that raises; the payload is
        // then null, and not what the caller's cleared value left there.
        value->vt = type;
        value->byref = nullptr;
        switch (id) {
        case propertyName:
            value->bstrVal = CComBSTR(GetBrandedString(IDS_PLUGIN_NAME)).Detach();
            break;
        case propertyIconLocation:
            value->bstrVal = iconLocation();
            break;
        case propertyFixedName:
            value->bstrVal = CComBSTR(L"Password Manager").Detach();
            break;
        case propertyDescription:
            value->bstrVal = CComBSTR(GetBrandedString(IDS_PLUGIN_DESCRIPTION)).Detach();
            break;
        case propertyKind:
            value->ulVal = 2;
            break;
        case propertySecurityLevel:
            value->lVal = GetSecurityLevel();
            break;
        case propertyExplanation:
            GetExplanation(&value->bstrVal);
            break;
        case propertyNotifications: {
            SAFEARRAY* notices = nullptr;
            GetNotifications(&notices);
            SafeArrayUnlock(notices);
            value->parray = notices;
            break;
        }
        default:
            break;
        }
        return S_OK;
    } catch (...) {
        return frameStatus("GetProperty");
    }
}

// The plug-in has no property that a host may set.
STDMETHODIMP CVLKTPages::SetProperty(LONG, VARIANT*)
{
    return E_NOTIMPL;
}

STDMETHODIMP CVLKTPages::GetInfo(ULONG id, VARIANT* value)
{
    const traceScope_t scope("CVLKTPages::GetInfo");
    HRESULT status = unknownProperty;
    try {
        if (id == 0) {
            CComVariant text(classIdentifierText().c_str());
            status = value ? text.Detach(value) : E_POINTER;
        }
    } catch (...) {
        status = E_UNEXPECTED;
    }
    // Reads through value on every path, also after a failure: a caller must always pass one.
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference)
    const VARTYPE type = value->vt;
    tracecore::traceFormat(0, "%d = %ls[%d]", id, type == VT_BSTR ? value->bstrVal : L"", type);
    tracecore::traceIfFailed("", status);
    return status;
}
