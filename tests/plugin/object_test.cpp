#include "atl/exception.h"
#include "common/status.h"
#include "counted.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "support/tracerecorder.h"

#include <functional>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

using namespace VLONLINEIDSLib;

TEST(Object, ComesFromTheOneFactoryAndAnswersForItsEightInterfacesAndNoOther)
{
    const LONG locks = _pAtlModule->GetLockCount();
    void* out = nullptr;
    const auto taken = [&](HRESULT status) {
        EXPECT_EQ(status, S_OK);
        return counted<IUnknown>(static_cast<IUnknown*>(out));
    };
    const auto made = taken(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, &out));
    EXPECT_EQ(made, taken(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, &out)));
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1); // only the way from one to two locks
    const auto factory = static_cast<IClassFactory*>(made.get());
    auto object = taken(factory->CreateInstance(nullptr, IID_IUnknown, &out));
    const std::pair<HRESULT, std::function<HRESULT(void**)>> refusals[] = {
        {CLASS_E_CLASSNOTAVAILABLE,
         [](void** to) { return DllGetClassObject(IID_IUnknown, IID_IUnknown, to); }},
        {E_NOINTERFACE,
         [](void** to) { return DllGetClassObject(CLSID_CVLKTPages, IID_IDispatch, to); }},
        {CLASS_E_NOAGGREGATION,
         [&](void** to) { return factory->CreateInstance(factory, IID_IUnknown, to); }},
        {E_NOINTERFACE,
         [&](void** to) { return factory->CreateInstance(nullptr, IID_IDispatch, to); }},
        {E_NOINTERFACE, [&](void** to) { return object->QueryInterface(IID_IDispatch, to); }}};
    for (const auto& row : refusals) {
        SCOPED_TRACE(&row - refusals);
        EXPECT_EQ(row.second(&(out = &out)), row.first);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(row.second(nullptr), E_POINTER);
    }
    for (const IID& iid :
         {__uuidof(IVLKTElementUI), __uuidof(IVLKSecurityStatus), __uuidof(IVLKTPluginInfo),
          __uuidof(IVLKTDisableApp), __uuidof(IVLKTBackupRestore3), __uuidof(IVLKTBackupRestore2),
          __uuidof(IVLKTTraySubscribe), __uuidof(IVLKTPages)}) {
        const auto one = taken(object->QueryInterface(iid, &out));
        EXPECT_EQ(taken(one->QueryInterface(IID_IUnknown, &out)), object); // one identity
    }
    // Hosts call by slot: AddPages stands after the three of IUnknown, and the destructor, which
    // has two slots with this compiler, after that.
    using slot_t = HRESULT(STDMETHODCALLTYPE*)(void*);
    taken(object->QueryInterface(__uuidof(IVLKTPages), &out));
    slot_t* const slots = *static_cast<slot_t**>(out);
    EXPECT_EQ(slots[3](out), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 2); // what was refused is gone again
    object.release();
    slots[5](out);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
    EXPECT_TRUE(factory->LockServer(TRUE) == S_OK && _pAtlModule->GetLockCount() == locks + 1);
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
