#include "plugin/notification.h"

#include "atl/safearray.h"
#include "common/registry.h"
#include "common/status.h"
#include "neighbours/dashboardkeys.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "storage/paths.h"

#include <shellapi.h>

using namespace VLONLINEIDSLib;
using ATL::CComBSTR;
using ATL::CComVariant;

namespace {

constexpr LONG levelGood = 4; // nothing to show at this level

// What a console is started with: the plug-in whose page it opens, and two zeros.
constexpr wchar_t consoleArguments[] = L"{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0";

std::wstring dismissKeyPath(const wchar_t* classId)
{
    return std::wstring(dashboardDismissedKey) + L'\\' + classId;
}

} // namespace

std::wstring classIdentifierText()
{
    wchar_t text[64] = {};
    StringFromGUID2(CLSID_CVLKTPages, text, 64);
    return text;
}

bool IsMessageShown(const wchar_t* classId, LONG level)
{
    const CRegistryKey key = openKey(HKEY_CURRENT_USER, dismissKeyPath(classId).c_str(), KEY_READ);
    if (!key)
        return true;
    DWORD type = 0;
    DWORD dismissed = 0;
    DWORD size = sizeof dismissed;
    const LSTATUS result = RegQueryValueExW(key.get(), std::to_wstring(level).c_str(), nullptr,
                                            &type, reinterpret_cast<BYTE*>(&dismissed), &size);
    return !(result == ERROR_SUCCESS && type == REG_DWORD && dismissed != 0);
}

void SetMessageShown(const wchar_t* classId, LONG level, bool shown)
{
    CRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, dismissKeyPath(classId).c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr, key.put(),
                        nullptr) != ERROR_SUCCESS)
        return;
    const DWORD dismissed = shown ? 0 : 1;
    RegSetValueExW(key.get(), std::to_wstring(level).c_str(), 0, REG_DWORD,
                   reinterpret_cast<const BYTE*>(&dismissed), sizeof dismissed);
}

bool IsLevelTwoDismissed()
{
    const CComBSTR classId(classIdentifierText());
    return !IsMessageShown(classId, 2);
}

CNotification::CNotification(LONG level, BSTR explanation)
    : m_level(level),
      m_explanation(explanation),
      m_classId(classIdentifierText()),
      m_shown(level != levelGood && IsMessageShown(m_classId, level))
{}

STDMETHODIMP CNotification::QueryInterface(REFIID iid, void** out)
{
    if (!InlineIsEqualGUID(iid, IID_IUnknown) && !InlineIsEqualGUID(iid, __uuidof(IVLKTElementUI)))
        return E_NOINTERFACE; // out stays as it was, unlike the plug-in object's
    if (!out)
        return E_POINTER;
    AddRef();
    *out = this;
    return S_OK;
}

STDMETHODIMP_(ULONG) CNotification::AddRef()
{
    return static_cast<ULONG>(InterlockedIncrement(&m_count));
}

STDMETHODIMP_(ULONG) CNotification::Release()
{
    const auto count = static_cast<ULONG>(InterlockedDecrement(&m_count));
    if (count == 0)
        delete this;
    return count;
}

void CNotification::PropertyInto(ULONG id, VARIANT& value)
{
    switch (id) {
    case notificationCaption:
        value.bstrVal = CComBSTR(GetBrandedString(IDS_NOTIFICATION_CAPTION)).Detach();
        value.vt = VT_BSTR;
        return;
    case notificationShown:
        if (m_level == 1)
            raiseError(ERROR_NOT_SUPPORTED);
        value.vt = VT_BOOL;
        value.boolVal = m_shown ? VARIANT_TRUE : VARIANT_FALSE;
        return;
    case notificationActions: {
        if (m_level != 1 && m_level != 2)
            raiseError(ERROR_NOT_SUPPORTED);
        CComVariant self(static_cast<IUnknown*>(this));
        CVLVariantArray list;
        list.Add(self);
        const HRESULT status = SafeArrayCopy(list.Get(), &value.parray);
        if (FAILED(status))
            ATL::AtlThrow(status);
        value.vt = VT_ARRAY | VT_VARIANT;
        return;
    }
    case propertySecurityLevel:
        value.vt = VT_I4;
        value.lVal = m_level;
        return;
    case propertyExplanation:
        value.bstrVal = m_explanation.Copy();
        value.vt = VT_BSTR;
        return;
    default:
        raiseError(ERROR_UNKNOWN_PROPERTY);
    }
}

STDMETHODIMP CNotification::GetProperty(ULONG id, VARIANT* value)
{
    try {
        CComVariant property;
        PropertyInto(id, property);
        if (!value)
            return E_POINTER;
        return property.Detach(value);
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

STDMETHODIMP CNotification::SetProperty(LONG id, VARIANT* value)
{
    try {
        switch (id) {
        case commandSetShown:
            if (value && value->vt == VT_BOOL) {
                const bool shown = value->boolVal != VARIANT_FALSE;
                m_shown = shown;
                SetMessageShown(m_classId, m_level, shown);
            }
            return S_OK;
        case commandOpenConsole:
            ShellExecuteW(nullptr, nullptr, (bindir_view64() + L"VLUserConsole.exe").c_str(),
                          consoleArguments, nullptr, SW_SHOWNORMAL);
            return S_OK;
        default:
            return statusFromError(ERROR_UNKNOWN_PROPERTY);
        }
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return E_UNEXPECTED;
    }
}
