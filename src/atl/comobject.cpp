#include "atl/comobject.h"

HRESULT AtlInternalQueryInterface(void* object, const _ATL_INTMAP_ENTRY* entries, REFIID iid,
                                  void** out) noexcept
{
    if (!object || !entries)
        return E_INVALIDARG;
    if (!out)
        return E_POINTER;
    *out = nullptr;
    for (auto* entry = entries; entry->piid; ++entry) {
        // The first row stands for IUnknown too, so that the object has one identity.
        if (InlineIsEqualGUID(iid, IID_IUnknown) || InlineIsEqualGUID(iid, *entry->piid)) {
            IUnknown* const found = entry->pfnInterface(object);
            found->AddRef();
            *out = found;
            return S_OK;
        }
    }
    return E_NOINTERFACE;
}

HRESULT CComClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (outer && !InlineIsEqualGUID(iid, IID_IUnknown))
        return CLASS_E_NOAGGREGATION;
    return m_maker(outer, iid, out);
}

HRESULT CComClassFactory::LockServer(BOOL lock)
{
    if (lock)
        _pAtlModule->Lock();
    else
        _pAtlModule->Unlock();
    return S_OK;
}

const _ATL_INTMAP_ENTRY* CComClassFactory::GetEntries() noexcept
{
    static constexpr _ATL_INTMAP_ENTRY entries[] = {
        interfaceEntry<CComClassFactory, IClassFactory>(),
        {nullptr, nullptr},
    };
    return entries;
}
