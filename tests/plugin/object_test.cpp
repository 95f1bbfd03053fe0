#include <memory>

#include <gtest/gtest.h>

#include "atl/commodule.h"
#include "atl/comobject.h"
#include "plugin/vlktpages.h"

using namespace VLONLINEIDSLib;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out);

namespace {

struct releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface> using counted = std::unique_ptr<Interface, releaser>;

counted<IClassFactory> factory()
{
    void* out = nullptr;
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, &out), S_OK);
    return counted<IClassFactory>(static_cast<IClassFactory*>(out));
}

counted<IUnknown> instance()
{
    void* out = nullptr;
    EXPECT_EQ(factory()->CreateInstance(nullptr, IID_IUnknown, &out), S_OK);
    return counted<IUnknown>(static_cast<IUnknown*>(out));
}

} // namespace

TEST(Factory, OneForTheLifeOfTheModuleAndOutsidersLockIt)
{
    const LONG locks = _pAtlModule->GetLockCount();
    counted<IClassFactory> first = factory();
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1);
    {
        const counted<IClassFactory> second = factory();
        EXPECT_EQ(first.get(), second.get());
        EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1); // only the way from one to two locks
    }
    first.reset();
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
    EXPECT_EQ(factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks - 1);
    EXPECT_EQ(factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}

TEST(Factory, RefusesWhatItCannotMake)
{
    int place = 0;
    void* const before = &place;
    void* out = nullptr;
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(DllGetClassObject(IID_IUnknown, IID_IClassFactory, &(out = before)),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IDispatch, &(out = before)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);

    const counted<IClassFactory> made = factory();
    IUnknown* const outer = made.get();
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    for (const IID& iid : {IID_IUnknown, __uuidof(IVLKTPages)}) {
        EXPECT_EQ(made->CreateInstance(outer, iid, &(out = before)), CLASS_E_NOAGGREGATION);
        EXPECT_EQ(out, nullptr);
    }
    const LONG locks = _pAtlModule->GetLockCount();
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IDispatch, &(out = before)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks); // the refused object is gone again
}

TEST(Object, AnswersForItsEightInterfacesAndNoOther)
{
    const LONG locks = _pAtlModule->GetLockCount();
    {
        const counted<IUnknown> object = instance();
        EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1);
        for (const IID& iid :
             {__uuidof(IVLKTPages), __uuidof(IVLKTElementUI), __uuidof(IVLKSecurityStatus),
              __uuidof(IVLKTPluginInfo), __uuidof(IVLKTDisableApp), __uuidof(IVLKTBackupRestore3),
              __uuidof(IVLKTBackupRestore2), __uuidof(IVLKTTraySubscribe)}) {
            SCOPED_TRACE(iid.Data1);
            void* out = nullptr;
            ASSERT_EQ(object->QueryInterface(iid, &out), S_OK);
            const counted<IUnknown> found(static_cast<IUnknown*>(out));
            // One identity, whichever interface is asked.
            ASSERT_EQ(found->QueryInterface(IID_IUnknown, &out), S_OK);
            const counted<IUnknown> identity(static_cast<IUnknown*>(out));
            EXPECT_EQ(identity.get(), object.get());
        }
        void* pages = nullptr;
        EXPECT_EQ(object->QueryInterface(__uuidof(IVLKTPages), &pages), S_OK);
        EXPECT_EQ(pages, object.get());
        static_cast<IUnknown*>(pages)->Release();

        void* out = &out;
        EXPECT_EQ(object->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        EXPECT_EQ(AtlInternalQueryInterface(nullptr, CVLKTPages::GetEntries(), IID_IUnknown, &out),
                  E_INVALIDARG);
    }
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}

// Hosts call by slot: the operations stand behind the three of IUnknown, in the order of the
// interface.
TEST(Object, OperationsStandInTheSlotsThatHostsCall)
{
    const counted<IUnknown> object = instance();
    void* out = nullptr;
    ASSERT_EQ(object->QueryInterface(__uuidof(IVLKTPages), &out), S_OK);
    const counted<IUnknown> pages(static_cast<IUnknown*>(out));
    using slot0 = HRESULT(STDMETHODCALLTYPE*)(void*);
    EXPECT_EQ(reinterpret_cast<slot0**>(out)[0][3](out), S_OK); // AddPages

    ASSERT_EQ(object->QueryInterface(__uuidof(IVLKTElementUI), &out), S_OK);
    const counted<IUnknown> element(static_cast<IUnknown*>(out));
    using setProperty = HRESULT(STDMETHODCALLTYPE*)(void*, LONG, VARIANT*);
    EXPECT_EQ(reinterpret_cast<setProperty**>(out)[0][4](out, 2, nullptr), E_NOTIMPL);
}

TEST(ComModule, GlobalInterfaceTableIsMadeOnceOnDemand)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    IGlobalInterfaceTable* first = nullptr;
    IGlobalInterfaceTable* second = nullptr;
    EXPECT_EQ(_pAtlModule->GetGITPtr(nullptr), E_POINTER);
    EXPECT_EQ(_pAtlModule->GetGITPtr(&first), S_OK);
    EXPECT_EQ(_pAtlModule->GetGITPtr(&second), S_OK);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(first, second);
}
