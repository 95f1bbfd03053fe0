#include "atl/comutil.h"
#include "common/status.h"
#include "plugin/errorframe.h"
#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "tracecore/tracer.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

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

BSTR brandedText(UINT id)
{
    return CComBSTR(GetBrandedString(id)).Detach();
}

} // namespace

const CVLKTPages::Property CVLKTPages::properties[] = {
    {propertyName, VT_BSTR,
     [](CVLKTPages&, VARIANT& out) { out.bstrVal = brandedText(IDS_PLUGIN_NAME); }},
    {propertyIconLocation, VT_BSTR,
     [](CVLKTPages&, VARIANT& out) { out.bstrVal = iconLocation(); }},
    {propertyFixedName, VT_BSTR,
     [](CVLKTPages&, VARIANT& out) { out.bstrVal = CComBSTR(L"Password Manager").Detach(); }},
    {propertyDescription, VT_BSTR,
     [](CVLKTPages&, VARIANT& out) { out.bstrVal = brandedText(IDS_PLUGIN_DESCRIPTION); }},
    {propertyKind, VT_UI4, [](CVLKTPages&, VARIANT& out) { out.ulVal = 2; }},
    {propertySecurityLevel, VT_I4,
     [](CVLKTPages& pages, VARIANT& out) { out.lVal = pages.GetSecurityLevel(); }},
    {propertyExplanation, VT_BSTR,
     [](CVLKTPages& pages, VARIANT& out) { pages.GetExplanation(&out.bstrVal); }},
    {propertyNotifications, VT_ARRAY | VT_VARIANT,
     [](CVLKTPages& pages, VARIANT& out) {
         SAFEARRAY* notices = nullptr;
         pages.GetNotifications(&notices);
         SafeArrayUnlock(notices);
         out.parray = notices;
     }},
};

STDMETHODIMP CVLKTPages::GetProperty(ULONG id, VARIANT* value)
{
    const traceScope_t scope("CVLKTPages::GetProperty");
    try {
        if (!value)
            raiseStatus(E_POINTER);
        VariantClear(value); // before the id is looked at, so that an unknown one empties it too
        const auto known = std::ranges::find(properties, id, &Property::id);
        if (known == std::end(properties))
            return unknownProperty;
        // The tag is set before the payload is computed, and stays if that raises; the payload is
        // then null, and not what the caller's cleared value left there.
        value->vt = known->type;
        value->byref = nullptr;
        known->value(*this, *value);
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
