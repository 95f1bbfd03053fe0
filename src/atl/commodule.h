#pragma once

#include <windows.h>
#include <objidl.h>

#include <atomic>

// The module records of the component model. Each is not ready, then ready, then not ready again;
// what made one fail at start is remembered in CAtlBaseModule::m_bInitFailed.

using _ATL_CREATORFUNC = HRESULT WINAPI(void* argument, REFIID iid, void** out);

// _ATL_OBJMAP_ENTRY is one class that the module offers.
struct _ATL_OBJMAP_ENTRY {
    const CLSID* pclsid;
    HRESULT(WINAPI* pfnUpdateRegistry)(BOOL registering);
    _ATL_CREATORFUNC* pfnGetClassObject; // the factory maker
    _ATL_CREATORFUNC* pfnCreateInstance; // the instance maker, given to the factory maker
    std::atomic<void*>* pCF;             // the factory cell: encoded pointer, or null
    LPCWSTR(WINAPI* pfnGetObjectDescription)();
    const void*(WINAPI* pfnGetCategoryMap)();
    void(WINAPI* pfnObjectMain)(bool starting);
};

// CAtlBaseModule records the module's own handle.
class CAtlBaseModule
{
public:
    CAtlBaseModule() noexcept;
    HINSTANCE GetModuleInstance() const noexcept { return m_hInst; }

    static std::atomic<bool> m_bInitFailed;

private:
    HINSTANCE m_hInst;
};

// CAtlComModule carries the object map and the lock that guards the making of factories.
class CAtlComModule
{
public:
    CAtlComModule() noexcept;
    ~CAtlComModule();
    CAtlComModule(const CAtlComModule&) = delete;
    CAtlComModule& operator=(const CAtlComModule&) = delete;

    bool IsReady() const noexcept { return cbSize != 0; }

    // GetClassObject is DllGetClassObject over the object map.
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out);

    // ExecuteObjectMain notifies every class that the module starts or ends.
    void ExecuteObjectMain(bool starting);

    void Term() noexcept;

private:
    UINT cbSize = 0; // 0: not ready
    _ATL_OBJMAP_ENTRY* const* m_ppObjMapFirst;
    _ATL_OBJMAP_ENTRY* const* m_ppObjMapLast;
    CRITICAL_SECTION m_csObjMap{};
};

struct IRegistrarBase : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE AddReplacement(LPCOLESTR key, LPCOLESTR item) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearReplacements() = 0;
};

struct _ATL_TERMFUNC_ELEM {
    void(__stdcall* pFunc)(DWORD_PTR);
    DWORD_PTR dw;
    _ATL_TERMFUNC_ELEM* pNext;
};

struct _ATL_MODULE70 {
    UINT cbSize = 0; // 0: not ready
    LONG m_nLockCnt = 0;
    _ATL_TERMFUNC_ELEM* m_pTermFuncs = nullptr;
    CRITICAL_SECTION m_csStaticDataInitAndTypeInfo{};
    std::atomic<IGlobalInterfaceTable*> m_pGIT{nullptr};
};

// CAtlModule counts what keeps the module loaded.
class CAtlModule : public _ATL_MODULE70
{
public:
    CAtlModule() noexcept;
    CAtlModule(const CAtlModule&) = delete;
    CAtlModule& operator=(const CAtlModule&) = delete;
    virtual ~CAtlModule();

    virtual LONG Lock() noexcept;
    virtual LONG Unlock() noexcept;
    virtual LONG GetLockCount() noexcept;

    // GetGITPtr gives the process's global interface table, made on first use.
    //
    // out:     a loan; the module keeps the reference
    // Returns: E_POINTER for null, or the status of CoCreateInstance
    virtual HRESULT GetGITPtr(IGlobalInterfaceTable** out) noexcept;

    virtual HRESULT AddCommonRGSReplacements(IRegistrarBase* registrar) = 0;

    void Term() noexcept;
};

class CAtlValidateModuleConfiguration
{};

template <class Module> class CAtlModuleT : public CAtlModule
{
public:
    HRESULT AddCommonRGSReplacements(IRegistrarBase* registrar) override
    {
        return registrar->AddReplacement(L"APPID", L"");
    }
};

extern CAtlModule* _pAtlModule; // lets any object lock the module

template <class Module>
class CAtlDllModuleT : public CAtlModuleT<Module>, public CAtlValidateModuleConfiguration
{};

// CModuleLock holds one lock on the module for a block.
class CModuleLock
{
public:
    CModuleLock() noexcept { _pAtlModule->Lock(); }
    ~CModuleLock() { _pAtlModule->Unlock(); }
    CModuleLock(const CModuleLock&) = delete;
    CModuleLock& operator=(const CModuleLock&) = delete;
};

extern CAtlBaseModule _AtlBaseModule;
extern CAtlComModule _AtlComModule;

// The object map of this module, given by whoever defines the classes.
extern _ATL_OBJMAP_ENTRY* const _AtlObjectMapFirst[];
extern const size_t _AtlObjectMapCount;
