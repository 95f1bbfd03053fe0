#include "atl/commodule.h"

#include "common/initorder.h"
#include "common/module.h"

[[gnu::init_priority(initBaseModule)]] std::atomic<bool> CAtlBaseModule::m_bInitFailed{false};
[[gnu::init_priority(initBaseModule)]] CAtlBaseModule _AtlBaseModule;
[[gnu::init_priority(initComModule)]] CAtlComModule _AtlComModule;
CAtlModule* _pAtlModule = nullptr;

namespace {

class CLockHolder
{
public:
    explicit CLockHolder(CRITICAL_SECTION& lock) noexcept : m_lock(lock)
    {
        EnterCriticalSection(&m_lock);
    }
    ~CLockHolder() { LeaveCriticalSection(&m_lock); }
    CLockHolder(const CLockHolder&) = delete;
    CLockHolder& operator=(const CLockHolder&) = delete;

private:
    CRITICAL_SECTION& m_lock;
};

IUnknown* factoryIn(const std::atomic<void*>& cell) noexcept
{
    return static_cast<IUnknown*>(DecodePointer(cell.load(std::memory_order_acquire)));
}

} // namespace

CAtlBaseModule::CAtlBaseModule() noexcept : m_hInst(thisModule()) {}

CAtlComModule::CAtlComModule() noexcept
    : m_ppObjMapFirst(_AtlObjectMapFirst), m_ppObjMapLast(_AtlObjectMapFirst + _AtlObjectMapCount)
{
    if (InitializeCriticalSectionEx(&m_csObjMap, 0, 0))
        cbSize = sizeof *this;
    else
        CAtlBaseModule::m_bInitFailed = true;
}

CAtlComModule::~CAtlComModule()
{
    Term();
}

void CAtlComModule::Term() noexcept
{
    if (!IsReady())
        return;
    for (auto entry = m_ppObjMapFirst; entry < m_ppObjMapLast; ++entry) {
        if (!(*entry)->pCF->load())
            continue;
        factoryIn(*(*entry)->pCF)->Release();
        (*entry)->pCF->store(nullptr);
    }
    DeleteCriticalSection(&m_csObjMap);
    cbSize = 0;
}

void CAtlComModule::ExecuteObjectMain(bool starting)
{
    for (auto entry = m_ppObjMapFirst; entry < m_ppObjMapLast; ++entry)
        (*entry)->pfnObjectMain(starting);
}

HRESULT CAtlComModule::GetClassObject(REFCLSID clsid, REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (!IsReady())
        return E_UNEXPECTED;
    for (auto entry = m_ppObjMapFirst; entry < m_ppObjMapLast; ++entry) {
        if (!(*entry)->pfnGetClassObject || !InlineIsEqualGUID(*(*entry)->pclsid, clsid))
            continue;
        auto& cell = *(*entry)->pCF;
        HRESULT made = S_OK;
        if (!cell.load(std::memory_order_acquire)) {
            const CLockHolder lock(m_csObjMap);
            if (!cell.load(std::memory_order_acquire)) {
                void* factory = nullptr;
                made = (*entry)->pfnGetClassObject(
                    reinterpret_cast<void*>((*entry)->pfnCreateInstance), IID_IUnknown, &factory);
                if (SUCCEEDED(made))
                    cell.store(EncodePointer(factory), std::memory_order_release);
            }
        }
        if (!cell.load(std::memory_order_acquire))
            return made != S_OK ? made : CLASS_E_CLASSNOTAVAILABLE;
        const HRESULT status = factoryIn(cell)->QueryInterface(iid, out);
        return status != S_OK || *out ? status : CLASS_E_CLASSNOTAVAILABLE;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

CAtlModule::CAtlModule() noexcept
{
    if (InitializeCriticalSectionEx(&m_csStaticDataInitAndTypeInfo, 0, 0))
        cbSize = sizeof(_ATL_MODULE70);
    else
        CAtlBaseModule::m_bInitFailed = true;
    _pAtlModule = this;
}

CAtlModule::~CAtlModule()
{
    Term();
}

LONG CAtlModule::Lock() noexcept
{
    return InterlockedIncrement(&m_nLockCnt);
}

LONG CAtlModule::Unlock() noexcept
{
    return InterlockedDecrement(&m_nLockCnt);
}

LONG CAtlModule::GetLockCount() noexcept
{
    return m_nLockCnt;
}

HRESULT CAtlModule::GetGITPtr(IGlobalInterfaceTable** out) noexcept
{
    if (!out)
        return E_POINTER;
    if (!m_pGIT.load()) {
        IGlobalInterfaceTable* made = nullptr;
        const HRESULT status =
            CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                             IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&made));
        if (FAILED(status)) {
            *out = nullptr;
            return status;
        }
        IGlobalInterfaceTable* none = nullptr;
        if (!m_pGIT.compare_exchange_strong(none, made))
            made->Release();
    }
    *out = m_pGIT.load();
    return S_OK;
}

void CAtlModule::Term() noexcept
{
    if (cbSize == 0)
        return;
    for (auto* element = m_pTermFuncs; element; element = element->pNext)
        element->pFunc(element->dw);
    if (IGlobalInterfaceTable* const table = m_pGIT.exchange(nullptr))
        table->Release();
    DeleteCriticalSection(&m_csStaticDataInitAndTypeInfo);
    cbSize = 0;
}
