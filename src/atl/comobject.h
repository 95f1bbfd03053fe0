#pragma once

#include "atl/commodule.h"

#include <windows.h>
#include <unknwn.h>

#include <new>

// Objects of the component model: reference counts, interface tables, creation, and the class
// factory. Counts are atomic; the lock of an object exists for classes that want it and is never
// entered here.

// _ATL_INTMAP_ENTRY is one row of a class's interface table. The first row answers for IUnknown; a
// row without an identifier ends the table.
struct _ATL_INTMAP_ENTRY {
    const IID* piid;
    IUnknown* (*pfnInterface)(void* object) noexcept;
};

// interfaceEntry makes the row for one interface of a class.
template <class Class, class Interface> constexpr _ATL_INTMAP_ENTRY interfaceEntry() noexcept
{
    return {&__uuidof(Interface), [](void* object) noexcept -> IUnknown* {
                return static_cast<Interface*>(static_cast<Class*>(object));
            }};
}

// AtlInternalQueryInterface looks an interface up in a table, from the top.
//
// object:  the most derived object that the table was made for
// Returns: S_OK with a counted pointer in out; E_NOINTERFACE with null in out; E_INVALIDARG for a
//          null object or table; E_POINTER for a null out
HRESULT AtlInternalQueryInterface(void* object, const _ATL_INTMAP_ENTRY* entries, REFIID iid,
                                  void** out) noexcept;

struct CComMultiThreadModel {
    static ULONG Increment(LONG* value) noexcept
    {
        return static_cast<ULONG>(InterlockedIncrement(value));
    }
    static ULONG Decrement(LONG* value) noexcept
    {
        return static_cast<ULONG>(InterlockedDecrement(value));
    }
};

// CComObjectRootEx holds what every object has: count, lock, and whether the lock was made.
template <class ThreadModel> class CComObjectRootEx
{
public:
    ULONG InternalAddRef() noexcept { return ThreadModel::Increment(&m_dwRef); }
    ULONG InternalRelease() noexcept { return ThreadModel::Decrement(&m_dwRef); }
    void InternalFinalConstructAddRef() noexcept { InternalAddRef(); }
    void InternalFinalConstructRelease() noexcept { InternalRelease(); }

    // _AtlInitialConstruct makes the lock.
    //
    // Returns: S_OK, or the last error as a status
    HRESULT _AtlInitialConstruct() noexcept
    {
        if (!InitializeCriticalSectionEx(&m_lock, 0, 0))
            return static_cast<HRESULT>(0x80070000u | (GetLastError() & 0xFFFFu));
        m_lockMade = 1;
        return S_OK;
    }

    HRESULT FinalConstruct() { return S_OK; }
    void FinalRelease() {}

protected:
    CComObjectRootEx() noexcept = default;
    ~CComObjectRootEx()
    {
        if (m_lockMade) {
            m_lockMade = 0;
            DeleteCriticalSection(&m_lock);
        }
    }
    CComObjectRootEx(const CComObjectRootEx&) = delete;
    CComObjectRootEx& operator=(const CComObjectRootEx&) = delete;

    static constexpr LONG refDestroyed = static_cast<LONG>(0xC0000001u);

    LONG m_dwRef = 0; // refDestroyed once destruction has begun
    CRITICAL_SECTION m_lock{};
    BYTE m_lockMade = 0;
};

// CComObject is the most derived class of a counted object; it holds one lock on the module for its
// whole life.
template <class Base> class CComObject : public Base
{
public:
    explicit CComObject(void* = nullptr) noexcept { _pAtlModule->Lock(); }
    ~CComObject() override
    {
        this->m_dwRef = Base::refDestroyed;
        this->FinalRelease();
        // The module lock goes before the object's own lock, which the root deletes.
        _pAtlModule->Unlock();
    }

    STDMETHOD_(ULONG, AddRef)() override { return this->InternalAddRef(); }
    STDMETHOD_(ULONG, Release)() override
    {
        const ULONG count = this->InternalRelease();
        if (count == 0) {
            const CModuleLock lock;
            delete this;
        }
        return count;
    }
    STDMETHOD(QueryInterface)(REFIID iid, void** out) override
    {
        return AtlInternalQueryInterface(static_cast<Base*>(this), Base::GetEntries(), iid, out);
    }
};

// CComObjectCached is the most derived class of an object that the module keeps: the module's own
// reference does not count as a lock on the module, those of outsiders do.
template <class Base> class CComObjectCached : public Base
{
public:
    explicit CComObjectCached(void* = nullptr) noexcept {}
    ~CComObjectCached() override
    {
        this->m_dwRef = Base::refDestroyed;
        this->FinalRelease();
    }

    STDMETHOD_(ULONG, AddRef)() override
    {
        const ULONG count = this->InternalAddRef();
        if (count == 2)
            _pAtlModule->Lock();
        return count;
    }
    STDMETHOD_(ULONG, Release)() override
    {
        const ULONG count = this->InternalRelease();
        if (count == 0)
            delete this;
        else if (count == 1)
            _pAtlModule->Unlock();
        return count;
    }
    STDMETHOD(QueryInterface)(REFIID iid, void** out) override
    {
        return AtlInternalQueryInterface(static_cast<Base*>(this), Base::GetEntries(), iid, out);
    }
};

// CComCreator runs the creation of one object: allocate, make the lock, FinalConstruct, ask for the
// interface. On any failure the object is destroyed and the failing status returned. argument goes
// to SetVoid, if there is one.
template <class Object> struct CComCreator {
    static HRESULT WINAPI CreateInstance(void* argument, REFIID iid, void** out)
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        auto* const object = new (std::nothrow) Object(argument);
        if (!object)
            return E_OUTOFMEMORY;
        if constexpr (requires { object->SetVoid(argument); })
            object->SetVoid(argument);
        object->InternalFinalConstructAddRef(); // held through the next steps
        HRESULT status = object->_AtlInitialConstruct();
        if (SUCCEEDED(status))
            status = object->FinalConstruct();
        object->InternalFinalConstructRelease();
        if (SUCCEEDED(status))
            status = object->QueryInterface(iid, out);
        if (FAILED(status))
            delete object;
        return status;
    }
};

// CComNoAggregationCreator is CComCreator for a class that can't be part of another object.
template <class Object> struct CComNoAggregationCreator {
    static HRESULT WINAPI CreateInstance(void* outer, REFIID iid, void** out)
    {
        if (!outer)
            return CComCreator<Object>::CreateInstance(nullptr, iid, out);
        if (!out)
            return E_POINTER;
        *out = nullptr;
        return CLASS_E_NOAGGREGATION;
    }
};

// CComClassFactory makes instances through the maker that SetVoid stored.
class CComClassFactory : public IClassFactory, public CComObjectRootEx<CComMultiThreadModel>
{
public:
    STDMETHOD(CreateInstance)(IUnknown* outer, REFIID iid, void** out) override;
    STDMETHOD(LockServer)(BOOL lock) override;
    virtual ~CComClassFactory() = default;

    void SetVoid(void* maker) noexcept { m_maker = reinterpret_cast<_ATL_CREATORFUNC*>(maker); }
    static const _ATL_INTMAP_ENTRY* GetEntries() noexcept;

private:
    _ATL_CREATORFUNC* m_maker = nullptr;
};

// CComCoClass gives a class its identifier and its makers for the object map.
template <class Class, const CLSID* classId> class CComCoClass
{
public:
    static constexpr const CLSID& GetObjectCLSID() noexcept { return *classId; }
    static HRESULT WINAPI _CreateInstance(void* outer, REFIID iid, void** out)
    {
        return CComNoAggregationCreator<CComObject<Class>>::CreateInstance(outer, iid, out);
    }
    static HRESULT WINAPI _GetClassObject(void* maker, REFIID iid, void** out)
    {
        return CComCreator<CComObjectCached<CComClassFactory>>::CreateInstance(maker, iid, out);
    }
};
