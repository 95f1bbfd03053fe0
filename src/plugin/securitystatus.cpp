#include "atl/comutil.h"
#include "atl/safearray.h"
#include "common/registry.h"
#include "common/status.h"
#include "neighbours/dashboardkeys.h"
#include "plugin/errorframe.h"
#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "tracecore/tracer.h"

using namespace VLONLINEIDSLib;
using ATL::CComBSTR;
using ATL::CComVariant;
using tracecore::traceScope_t;

namespace {

// readStatusInput reads IDCard_SS, which other components maintain. A value of any type with four
// bytes is taken as the number; whatever can't be read is 0.
DWORD readStatusInput() noexcept
{
    const CRegistryKey key = openKey(HKEY_CURRENT_USER, dashboardCardKey, KEY_READ);
    if (!key)
        return 0;
    DWORD value = 0;
    DWORD size = sizeof value;
    if (RegQueryValueExW(key.get(), dashboardCardStatus, nullptr, nullptr,
                         reinterpret_cast<BYTE*>(&value), &size) != ERROR_SUCCESS)
        return 0;
    return value;
}

struct CardStatus {
    ULONG status;
    UINT text; // the string's number
};

CardStatus statusFromInput(DWORD input) noexcept
{
    switch (input) {
    case 0:
        return {0, IDS_STATUS_NOT_SET_UP};
    case 1:
        return {2, IDS_STATUS_AT_RISK};
    default:
        return {1, IDS_STATUS_READY};
    }
}

} // namespace

// Of IVLKSecurityStatus. Disabled by policy shows as status 0, a text and a failure all at once.
STDMETHODIMP CVLKTPages::GetStatus(ULONG* status, BSTR* text)
{
    const traceScope_t scope("CVLKTPages::GetStatus");
    try {
        *status = 0;
        ULONG disabled = 0;
        GetGPOSettings(&disabled); // a policy that can't be read counts as none
        if (disabled) {
            *text = CComBSTR(GetBrandedString(IDS_STATUS_DISABLED)).Detach();
            raiseStatus(E_NOTIMPL);
        }
        const CardStatus found = statusFromInput(readStatusInput());
        *status = found.status;
        *text = CComBSTR(GetBrandedString(found.text)).Detach();
        return S_OK;
    } catch (...) {
        return frameStatus("GetStatus");
    }
}

// Of IVLKTDisableApp, with the same entry in the trace. An exception is traced, and the result
// stays S_OK.
STDMETHODIMP CVLKTPages::GetStatus(ULONG* status)
{
    const traceScope_t scope("CVLKTPages::GetStatus");
    if (!status)
        return E_POINTER;
    try {
        *status = 0;
        ULONG disabled = 0;
        const HRESULT result = GetGPOSettings(&disabled);
        if (result == 0)
            *status = disabled ? 3 : 1;
        else if (result == 1)
            *status = disabled ? 2 : 0;
    } catch (...) {
        frameStatus("GetStatus");
    }
    return S_OK;
}

LONG CVLKTPages::GetSecurityLevel()
{
    const traceScope_t scope("CVLKTPages::GetSecurityLevel");
    auto status = static_cast<ULONG>(-1);
    CComBSTR text;
    IVLKSecurityStatus* const self = this;
    self->GetStatus(&status, &text); // a disabled application counts as status 0
    switch (status) {
    case 0:
        return IsLevelTwoDismissed() ? 4 : 2;
    case 1:
        return 3;
    case 2:
        return 1;
    default:
        return 0;
    }
}

void CVLKTPages::GetExplanation(BSTR* explanation)
{
    const traceScope_t scope("CVLKTPages::GetExplanation");
    *explanation = nullptr;
    ULONG status = 0;
    IVLKSecurityStatus* const self = this;
    self->GetStatus(&status, explanation);
}

void CVLKTPages::GetNotifications(SAFEARRAY** notices)
{
    const traceScope_t scope("CVLKTPages::GetNotifications");
    *notices = nullptr;
    // Each of the two asks for the status itself: policy and registry are read twice.
    CComBSTR explanation;
    GetExplanation(&explanation);
    const LONG level = GetSecurityLevel();
    // Without memory for the object the array carries a null one.
    CComVariant notice(
        static_cast<IUnknown*>(new (std::nothrow) CNotification(level, explanation)));
    CVLVariantArray list;
    list.Add(notice);
    *notices = list.Detach();
}
