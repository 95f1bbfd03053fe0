#include "atl/exception.h"
#include "common/status.h"
#include "counted.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "support/tracerecorder.h"

#include <stdexcept>
#include <utility>

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
    _ATL_OBJMAP_ENTRY& entry = *_AtlObjectMapFirst[0];
    void* const kept = entry.pCF->exchange(nullptr);
    const auto maker =
        std::exchange(entry.pfnGetClassObject, [](void*, REFIID, void**) { return E_OUTOFMEMORY; });
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, &out), E_OUTOFMEMORY);
    entry.pfnGetClassObject = maker;
    entry.pCF->store(kept);
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(DllGetClassObject(IID_IUnknown, IID_IUnknown, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IDispatch, &(out = &out)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(made->CreateInstance(made.get(), IID_IUnknown, &(out = &out)), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, &out), S_OK);
    static_cast<IUnknown*>(out)->Release();
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1); // both objects are gone again
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
    // Hosts call by slot: AddPages stands after the three of IUnknown, and the destructor, which
    // has two slots with this compiler, after that.
    using slot_t = HRESULT(STDMETHODCALLTYPE*)(void*);
    slot_t* const slots = *reinterpret_cast<slot_t**>(query(object, __uuidof(IVLKTPages)).get());
    EXPECT_EQ(slots[3](object), S_OK);
    slots[5](object);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}

TEST(ErrorFrame, EachKindOfFailureHasItsStatusAndLine)
{
    const std::tuple<void (*)(), HRESULT, const wchar_t*> cases[] = {
        {[] { throw std::runtime_error("why"); }, E_UNEXPECTED, L"|E 0 Call[std]why"},
        {[] { raiseStatus(S_FALSE); }, S_FALSE, L""}, // no failure: passes through without a line
        {[] { raiseError(ERROR_ACCESS_DENIED); }, E_ACCESSDENIED, L"|E -2147024891 Call[com]"},
        {[] { ATL::AtlThrow(E_OUTOFMEMORY); }, E_FAIL, L"|E 0 Calloo"}}; // its status is lost
    for (const auto& [raise, status, lines] : cases) {
        traceRecorder_t trace;
        try {
            raise();
        } catch (...) {
            EXPECT_EQ(frameStatus("Call"), status);
        }
        EXPECT_EQ(trace.joined(), lines);
    }
}
