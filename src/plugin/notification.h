#pragma once

#include "atl/comutil.h"
#include "vlonlineids.h"

#include <windows.h>

#include <atomic>
#include <string>

// classIdentifierText is the plug-in's class identifier in braces, in upper case.
std::wstring classIdentifierText();

// Dismissals of messages, one value per level. Only a REG_DWORD other than 0 counts as dismissed.
//
// classId: the plug-in's class identifier in braces
// Errors:  a failed read counts as shown, a failed write is not reported
// Source:  HKEY_CURRENT_USER, SOFTWARE\Veltrano\Applications\DashBoard\DismissMessages
bool IsMessageShown(const wchar_t* classId, LONG level);
void SetMessageShown(const wchar_t* classId, LONG level, bool shown);
bool IsLevelTwoDismissed();

// CNotification is what the dashboard shows of one level: a snapshot of level and explanation,
// whose shown flag alone can change. It traces nothing. Its last Release deletes it.
class CNotification final : public VLONLINEIDSLib::IVLKTElementUI
{
public:
    // explanation: copied; may be null
    CNotification(LONG level, BSTR explanation);
    CNotification(const CNotification&) = delete;
    CNotification& operator=(const CNotification&) = delete;

    STDMETHOD(QueryInterface)(REFIID iid, void** out) override; // leaves out alone on failure
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;
    STDMETHOD(GetProperty)(ULONG id, VARIANT* value) override;
    STDMETHOD(SetProperty)(LONG id, VARIANT* value) override;

private:
    ~CNotification() = default;
    void PropertyInto(ULONG id, VARIANT& value);

    LONG m_count = 0;
    LONG m_level;
    ATL::CComBSTR m_explanation;
    ATL::CComBSTR m_classId;
    std::atomic<bool> m_shown;
};
