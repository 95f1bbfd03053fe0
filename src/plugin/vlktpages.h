#pragma once

#include "atl/comobject.h"
#include "vlonlineids.h"

// CVLKTPages is the one component class. It has no state: each operation reads what it needs at the
// moment of the call and forgets it. The operations are in files of their own by subject:
// pages.cpp (life cycle and what does nothing), properties.cpp, securitystatus.cpp (both GetStatus,
// level, explanation, notifications), disableapp.cpp (the policy) and backupoperations.cpp.
class CVLKTPages : public CComObjectRootEx<CComMultiThreadModel>,
                   public CComCoClass<CVLKTPages, &VLONLINEIDSLib::CLSID_CVLKTPages>,
                   public VLONLINEIDSLib::IVLKTPages,
                   public VLONLINEIDSLib::IVLKTElementUI,
                   public VLONLINEIDSLib::IVLKSecurityStatus,
                   public VLONLINEIDSLib::IVLKTPluginInfo,
                   public VLONLINEIDSLib::IVLKTDisableApp,
                   public VLONLINEIDSLib::IVLKTTraySubscribe,
                   public VLONLINEIDSLib::IVLKTBackupRestore2,
                   public VLONLINEIDSLib::IVLKTBackupRestore3
{
public:
    virtual ~CVLKTPages() = default; // declared first: its place in the table is after AddPages

    HRESULT FinalConstruct();
    void FinalRelease();
    static const _ATL_INTMAP_ENTRY* GetEntries() noexcept; // in the order of look-up

    STDMETHOD(AddPages)() override;

    STDMETHOD(GetProperty)(ULONG id, VARIANT* value) override;
    STDMETHOD(SetProperty)(LONG id, VARIANT* value) override;

    STDMETHOD(GetStatus)(ULONG* status, BSTR* text) override; // of IVLKSecurityStatus

    STDMETHOD(GetInfo)(ULONG id, VARIANT* value) override;

    STDMETHOD(GetStatus)(ULONG* status) override; // of IVLKTDisableApp
    STDMETHOD(DisableLocal)(ULONG disable) override;

    STDMETHOD(Subscribe)() override;

    // Of both interfaces for backups.
    STDMETHODIMP GetStorageData(VARIANT* secretNames, VARIANT* storageData) override;
    STDMETHOD(SetStorageData)(VARIANT* storageData) override;
    STDMETHOD(SetStorageData2)(ULONG flags, VARIANT* storageData) override;
    STDMETHODIMP SetPluginData(ULONG secretsSize, const BYTE* secrets, ULONG storageSize,
                               const BYTE* storage) override;

private:
    // Property is one of the properties: value puts it into a VARIANT that has its type already.
    struct Property {
        ULONG id;
        VARTYPE type;
        void (*value)(CVLKTPages& pages, VARIANT& out);
    };
    static const Property properties[];

    // GetGPOSettings reads the policy that switches the application off.
    //
    // value:   0 unless the policy has a value
    // Returns: the policy record's status (0, 1, 0x80070002 for none, or another), or the failure
    HRESULT GetGPOSettings(ULONG* value);

    LONG GetSecurityLevel();                    // 0 to 4
    void GetExplanation(BSTR* explanation);     // the caller owns it
    void GetNotifications(SAFEARRAY** notices); // the caller owns it; locked once
};
