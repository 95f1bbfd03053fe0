#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "atl/exception.h"
#include "common/status.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"
#include "tracecore/realtracer.h"

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

void* newObject(const IID& iid)
{
    void* out = nullptr;
    EXPECT_EQ(factory()->CreateInstance(nullptr, iid, &out), S_OK);
    return out;
}

counted<IUnknown> query(IUnknown* object, const IID& iid)
{
    void* out = nullptr;
    EXPECT_EQ(object->QueryInterface(iid, &out), S_OK) << iid.Data1;
    return counted<IUnknown>(static_cast<IUnknown*>(out));
}

BOOL WINAPI noLock(LPCRITICAL_SECTION, DWORD, DWORD)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

} // namespace

TEST(Factory, OneForTheLifeOfTheModuleAndOutsidersLockIt)
{
    const LONG locks = _pAtlModule->GetLockCount();
    counted<IClassFactory> first = factory();
    EXPECT_EQ(first.get(), factory().get());
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1); // only the way from one to two locks
    EXPECT_EQ(first->LockServer(FALSE), S_OK);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
    EXPECT_EQ(first->LockServer(TRUE), S_OK);
    first.reset();
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}

TEST(Factory, RefusesWhatItCannotMake)
{
    const counted<IClassFactory> made = factory();
    const LONG locks = _pAtlModule->GetLockCount();
    void* out = &out;
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(DllGetClassObject(IID_IUnknown, IID_IUnknown, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_CVLKTPages, IID_IDispatch, &(out = &out)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    for (const IID& iid : {IID_IUnknown, __uuidof(IVLKTPages)}) {
        EXPECT_EQ(made->CreateInstance(made.get(), iid, &(out = &out)), CLASS_E_NOAGGREGATION);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IDispatch, &out), E_NOINTERFACE);
    const importPatch_t patch(GetModuleHandleW(nullptr), "InitializeCriticalSectionEx",
                              reinterpret_cast<void*>(&noLock));
    EXPECT_EQ(made->CreateInstance(nullptr, IID_IUnknown, &out),
              static_cast<HRESULT>(0x80070000 | ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks); // the refused objects are gone again
}

TEST(Object, AnswersForItsEightInterfacesAndNoOther)
{
    const LONG locks = _pAtlModule->GetLockCount();
    counted<IUnknown> object(static_cast<IUnknown*>(newObject(IID_IUnknown)));
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks + 1);
    EXPECT_EQ(query(object.get(), __uuidof(IVLKTPages)), object);
    for (const IID& iid :
         {__uuidof(IVLKTPages), __uuidof(IVLKTElementUI), __uuidof(IVLKSecurityStatus),
          __uuidof(IVLKTPluginInfo), __uuidof(IVLKTDisableApp), __uuidof(IVLKTBackupRestore3),
          __uuidof(IVLKTBackupRestore2), __uuidof(IVLKTTraySubscribe)})
        EXPECT_EQ(query(query(object.get(), iid).get(), IID_IUnknown), object); // one identity
    void* out = &out;
    EXPECT_EQ(object->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(AtlInternalQueryInterface(nullptr, CVLKTPages::GetEntries(), IID_IUnknown, &out),
              E_INVALIDARG);
    object.reset();
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);
}

// Hosts call by slot: the operations stand behind the three of IUnknown, and the destructor, which has
// two slots with this compiler, behind those.
TEST(Object, OperationsStandInTheSlotsThatHostsCall)
{
    const LONG locks = _pAtlModule->GetLockCount();
    using noArguments = HRESULT(STDMETHODCALLTYPE*)(void*);
    void* const pages = newObject(__uuidof(IVLKTPages));
    EXPECT_EQ((*static_cast<noArguments**>(pages))[3](pages), S_OK);
    (*static_cast<noArguments**>(pages))[5](pages);
    EXPECT_EQ(_pAtlModule->GetLockCount(), locks);

    using setProperty = HRESULT(STDMETHODCALLTYPE*)(void*, LONG, VARIANT*);
    void* const element = newObject(__uuidof(IVLKTElementUI));
    EXPECT_EQ((*static_cast<setProperty**>(element))[4](element, 2, nullptr), E_NOTIMPL);
    EXPECT_EQ(static_cast<IUnknown*>(element)->Release(), 0u);
}

TEST(ErrorFrame, EachKindOfFailureHasItsStatusAndLine)
{
    static int asked = 0;
    struct asking_t : std::exception {
        const char* what() const noexcept override { return ++asked, "why"; }
    };
    using lines_t = std::vector<std::wstring>;
    const struct {
        void (*raise)();
        HRESULT status;
        lines_t lines;
    } cases[] = {
        {[] { throw asking_t(); }, E_UNEXPECTED, {L"E 0 Call[std]why"}},
        {[] { raiseStatus(E_POINTER); }, E_POINTER, {L"E -2147467261 Call[com]"}},
        {[] { raiseStatus(S_FALSE); }, S_FALSE, {}}, // no failure: passes through without a line
        {[] { raiseError(ERROR_ACCESS_DENIED); }, E_ACCESSDENIED, {L"E -2147024891 Call[com]"}},
        {[] { ATL::AtlThrow(E_OUTOFMEMORY); }, E_FAIL, {L"E 0 Calloo"}}, // its status is lost
        {[] { throw 1; }, E_FAIL, {L"E 0 Calloo"}},
    };
    for (const auto& c : cases) {
        for (const bool closed : {false, true}) {
            SCOPED_TRACE(testing::Message() << &c - cases << closed);
            traceRecorder_t trace;
            tracecore::traceDisabled = closed;
            try {
                c.raise();
            } catch (...) {
                EXPECT_EQ(frameStatus("Call"), c.status);
            }
            tracecore::traceDisabled = 0;
            EXPECT_EQ(trace.messages(), closed ? lines_t() : c.lines);
        }
    }
    EXPECT_EQ(asked, 2); // by a closed tracer too
}
