#include "counted.h"
#include "plugin/vlktpages.h"

#include <gtest/gtest.h>

using namespace VLONLINEIDSLib;

namespace {

counted<IClassFactory> factory()
{
    void* out = nullptr;
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, &out), S_OK);
    return counted<IClassFactory>(static_cast<IClassFactory*>(out));
}

counted<IUnknown> query(IUnknown* object, const IID& iid)
{
    void* out = nullptr;
    EXPECT_EQ(object->QueryInterface(iid, &out), S_OK) << iid.Data1;
    return counted<IUnknown>(static_cast<IUnknown*>(out));
}

} // namespace

TEST(Factory, IsOneForTheModuleAndRefusesWhatItCannotMake)
{
    const LONG locks = _pAtlModule->GetLockCount();
    const counted<IClassFactory> made = factory();
    EXPECT_EQ(made, factory());
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1); // only the way from one to two locks
    void* out = &out;
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(DllGetClassObject(IID_IUnknown, IID_IUnknown, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IDispatch, &(out = &out)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(made->LockServer(FALSE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
    EXPECT_EQ(made->LockServer(TRUE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1);
}

TEST(Object, AnswersForItsEightInterfacesAndNoOther)
{
    const LONG locks = _pAtlModule->GetLockCount();
    void* out = nullptr;
    EXPECT_EQ(factory()->CreateInstance(nullptr, IID_IUnknown, &out), S_OK);
    const auto object = static_cast<IUnknown*>(out);
    for (const IID& iid :
         {__uuidof(IVLKTPages), __uuidof(IVLKTElementUI), __uuidof(IVLKSecurityStatus),
          __uuidof(IVLKTPluginInfo), __uuidof(IVLKTDisableApp), __uuidof(IVLKTBackupRestore3),
          __uuidof(IVLKTBackupRestore2), __uuidof(IVLKTTraySubscribe)})
        EXPECT_EQ(query(query(object, iid).get(), IID_IUnknown).get(), object); // one identity
    EXPECT_EQ(object->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    // Hosts call by slot: AddPages stands behind the three of IUnknown, and the destructor, which
    // has two slots with this compiler, behind that.
    using slot_t = HRESULT(STDMETHODCALLTYPE*)(void*);
    slot_t* const slots = *reinterpret_cast<slot_t**>(query(object, __uuidof(IVLKTPages)).get());
    EXPECT_EQ(slots[3](object), S_OK);
    slots[5](object);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}
