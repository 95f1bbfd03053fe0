#include "atl/exception.h"
#include "neighbours/settingsprovider.h"
#include "neighbours/vlfpapi.h"
#include "operations.h"
#include "support/freshprocess.h"
#include "support/growth.h"
#include "support/linkfixture.h"
#include "support/patchimport.h"
#include "support/tracebytes.h"

#include <comdef.h>

#include <stdexcept>
#include <thread>

// Neighbours that mean no good: libraries that lie, and names of the agent's link that others have.

namespace {

// lie_t is what the functions of the settings and policy libraries do in place of their own work.
struct lie_t {
    const char* name;
    std::function<HRESULT()> act;
    const char* policyLine;   // in the trace; empty for none
    const char* settingsLine; // likewise
    std::wstring text = {};
};
const lie_t* lie = nullptr; // null: the library's own function answers
bool keptIsFreed = false;
BSTR kept = nullptr; // left behind by a failing query, and not the plug-in's

SettingsCall ownQuery, ownSet;
decltype(&VLFPGetPolicySettingsEx) ownGet, ownPut;
decltype(&VLFPDoesSecretExist) ownExists;

HRESULT lyingQuery(SettingsRequest* request)
{
    if (!lie)
        return ownQuery(request);
    auto& answer = *static_cast<BSTR*>(request->value);
    answer = *lie->settingsLine ? kept : nullptr;
    const HRESULT status = lie->act();
    if (SUCCEEDED(status))
        answer = lie->text.empty()
                     ? nullptr
                     : SysAllocStringLen(lie->text.data(), static_cast<UINT>(lie->text.size()));
    *request = {}; // the record is the caller's
    return status;
}
HRESULT lyingSet(SettingsRequest* request)
{
    return lie ? lie->act() : ownSet(request);
}
LONG lyingPolicy(uint32_t count, VLFPPolicyRecord* records, decltype(ownGet) own)
{
    if (!lie)
        return own(count, records);
    const HRESULT status = lie->act();
    *records = {nullptr, status, ~0u, ~0ull, ~0ull, ~0ull};
    return status;
}
LONG WINAPI lyingGet(uint32_t count, VLFPPolicyRecord* records)
{
    return lyingPolicy(count, records, ownGet);
}
LONG WINAPI lyingPut(uint32_t count, VLFPPolicyRecord* records)
{
    return lyingPolicy(count, records, ownPut);
}
LONG WINAPI lyingExists(const wchar_t* user, uint32_t kind, const wchar_t* name)
{
    return lie ? lie->act() : ownExists(user, kind, name);
}

template <class Function> void* instead(Function& own, void* found, Function ours)
{
    own = reinterpret_cast<Function>(found);
    return reinterpret_cast<void*>(ours);
}

void* WINAPI findLiar(HMODULE module, const char* name)
{
    void* const found = reinterpret_cast<void*>(GetProcAddress(module, name));
    const std::string_view asked(name);
    return asked == "api_settings_query"        ? instead(ownQuery, found, lyingQuery)
           : asked == "api_settings_set"        ? instead(ownSet, found, lyingSet)
           : asked == "VLFPGetPolicySettingsEx" ? instead(ownGet, found, lyingGet)
           : asked == "VLFPSetPolicySettingsEx" ? instead(ownPut, found, lyingPut)
           : asked == "VLFPDoesSecretExist"     ? instead(ownExists, found, lyingExists)
                                                : found;
}

HRESULT structured(DWORD code)
{
    RaiseException(code, 0, 0, nullptr);
    return S_OK;
}

char* volatile nowhere = nullptr;

template <HRESULT status> HRESULT gives()
{
    return status;
}

const lie_t lies[] = {
    {"odd failure", gives<HRESULT(0x81234567)>, "E -2128394905 GetGPOSettings[com]",
     "E -2128394905 cannot set"},
    {"not found", gives<HRESULT(0x80070002)>, "E -2147024894 GetGPOSettings[com]",
     "E 0 INSTALLATION: cannot set"},
    {"odd success", gives<0x7FFFFFFF>, "", ""},
    {"integer", [] { return throw 7, S_OK; }, "E 0 GetGPOSettingsoo", "E -2147418113 cannot set"},
    {"standard exception", [] { return throw std::runtime_error("lie"), S_OK; },
     "E 0 GetGPOSettings[std]lie", "E -2147418113 cannot set"},
    {"no memory", [] { return throw std::bad_alloc(), S_OK; },
     "E 0 GetGPOSettings[std]std::bad_alloc", "E -2147418113 cannot set"},
    {"COM error", [] { return throw _com_error(E_ABORT), S_OK; },
     "E -2147467260 GetGPOSettings[com]", "E -2147467260 cannot set"},
    {"COM success", [] { return throw _com_error(S_FALSE), S_OK; }, "", ""},
    {"template library's", [] { return throw ATL::CAtlException(E_ABORT), S_OK; },
     "E 0 GetGPOSettingsoo", "E -2147418113 cannot set"},
    {"access violation", [] { return *nowhere = 1, S_OK; }, "E 0 GetGPOSettingsoo",
     "E -2147418113 cannot set"},
    {"breakpoint", [] { return structured(EXCEPTION_BREAKPOINT); }, "E 0 GetGPOSettingsoo",
     "E -2147418113 cannot set"},
    {"another compiler's", [] { return structured(0xE06D7363); }, "E 0 GetGPOSettingsoo",
     "E -2147418113 cannot set"},
    {"null text", gives<S_OK>, "", ""},
    {"huge text", gives<S_OK>, "", "", std::wstring(3'000'000, L'x')},
    {"huge list", gives<S_OK>, "", "", std::wstring(100'000, L'|') + L"C:\\VL\\lie"},
    {"zeros within", gives<S_OK>, "", "", std::wstring(L"C:\\VL\0\\lie", 11)},
    {"device", gives<S_OK>, "", "", L"\\\\.\\nul"},
    {"root", gives<S_OK>, "", "", L"\\"},
    {"drive", gives<S_OK>, "", "", L"q:"},
    {"unpaired halves", gives<S_OK>, "", "", L"C:\\VL\\\xD800\xDC00\xDC00\\\xD800"},
    {"nobody's network", gives<S_OK>, "", "", L"\\\\?\\UNC\\"}};

// Neighbour runs again in a process of its own, which finds what its parent installed.
template <class Fixture> class Neighbour : public Fixture
{
protected:
    void SetUp() override
    {
        if (testing::internal::InDeathTestChild())
            fs::current_path(this->m_root / L"current");
        else
            Fixture::SetUp();
    }
};

class Liars : public Neighbour<operationsTest>
{
protected:
    std::string all(const plugin_t& plugin)
    {
        std::string given;
        for (const char* scenario :
             {"information", "status", "notification", "backup", "restore", "pluginData"}) {
            outcome_t outcome = run(plugin, scenario);
            for (const HRESULT status : outcome.statuses)
                given += std::to_string(status) + ' ';
            given += outcome.given + '\n';
        }
        return given;
    }
    void expectHarmless(const lie_t& told)
    {
        std::thread([] { Sleep(60000), _exit(9); }).detach();
        setTracing(told.text.size() < 65536); // a longer record isn't readable
        writeFile(m_traceFile, traceBytes_t::header);
        const CLoadedModule policy(LoadLibraryW(m_policyLibrary));
        const plugin_t plugin;
        const HMODULE dll = GetModuleHandleW(L"VLOnlineIDs.dll");
        const importPatch_t find(dll, "GetProcAddress", reinterpret_cast<void*>(findLiar));
        const importPatch_t shell(dll, "ShellExecuteW",
                                  reinterpret_cast<void*>(+[] { return INT_PTR{33}; }));
        const importPatch_t release(dll, "SysFreeString", reinterpret_cast<void*>(+[](BSTR text) {
                                        keptIsFreed |= text && text == kept;
                                        SysFreeString(text);
                                    }));
        kept = SysAllocString(L"mine");
        const std::string before = (all(plugin), all(plugin));
        const size_t traced1 = traced().size();
        lie = &told;
        std::string grown = "?";
        for (int round = 0; round < 4 && !grown.empty(); ++round) {
            const heldResources_t held;
            all(plugin);
            grown = heldResources_t().grownSince(held);
        }
        lie = nullptr;
        EXPECT_EQ("", grown);
        const std::string trace = traced().substr(traced1);
        for (const std::string line : {told.policyLine, told.settingsLine})
            EXPECT_NE(std::string::npos, trace.find(line)) << line;
        EXPECT_EQ(*told.policyLine == 0, trace.find("GetGPOSettings[") == std::string::npos &&
                                             trace.find("GetGPOSettingsoo") == std::string::npos);
        EXPECT_EQ(*told.settingsLine == 0, trace.find("cannot set") == std::string::npos);
        EXPECT_FALSE(keptIsFreed);
        SysFreeString(std::exchange(kept, nullptr));
        EXPECT_EQ(before, (all(plugin), all(plugin)));
    }
};

TEST_F(Liars, CanNeitherCrashNorGrowNorSpoilTheNextCall)
{
    IN_FRESH_PROCESS({
        std::thread([] { Sleep(200000), _exit(9); }).detach();
        for (const lie_t& told : lies) {
            SCOPED_TRACE(told.name);
            std::fprintf(stderr, "%s\n", told.name); // the last one is where it ended
            expectHarmless(told);
        }
    });
}

// An endless wait ends after a moment, and counts.
int endless = 0;
DWORD WINAPI waitImpatiently(HANDLE object, DWORD time)
{
    DWORD result = WaitForSingleObject(object, std::min<DWORD>(time, 100));
    if (result == WAIT_TIMEOUT && time == INFINITE) {
        ++endless;
        SetLastError(ERROR_TIMEOUT);
        result = WAIT_FAILED;
    }
    return result;
}

HANDLE block(const wchar_t* name, DWORD size, DWORD kind, SECURITY_ATTRIBUTES* security = nullptr)
{
    return CreateFileMappingW(INVALID_HANDLE_VALUE, security, kind, 0, size, name);
}

// SECURITY_ATTRIBUTES that grant nobody anything.
SECURITY_ATTRIBUTES* nobody()
{
    static ACL none = {ACL_REVISION, 0, sizeof none, 0, 0};
    static SECURITY_DESCRIPTOR descriptor;
    static SECURITY_ATTRIBUTES attributes = {sizeof attributes, &descriptor, FALSE};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, &none, FALSE);
    return &attributes;
}

constexpr const wchar_t* names[] = {L"VLMAX_NIPC_MUTEX", L"VLMAX_NIPC_BUFFER_READY",
                                    L"VLMAX_NIPC_DATA_READY", L"VLMAX_NIPC_BUFFER", L"VLTEMPLATE"};
enum { admission, acknowledge, dataReady, buffer, payload };
enum { mutex, semaphore, event, memory };

HANDLE make(int type, const wchar_t* name, SECURITY_ATTRIBUTES* security = nullptr)
{
    return type == mutex       ? CreateMutexW(security, FALSE, name)
           : type == semaphore ? CreateSemaphoreW(security, 1, 1, name)
           : type == event     ? CreateEventW(security, FALSE, FALSE, name)
                               : block(name, 0x1000, PAGE_READWRITE, security);
}

CKernelHandle* ofStub(agentStub_t& stub, int name)
{
    CKernelHandle* const objects[] = {&stub.semaphore, &stub.acknowledge, &stub.dataReady,
                                      &stub.buffer, nullptr};
    return objects[name];
}

class Link : public Neighbour<installedTest>
{
protected:
    void expectAll();

    using act_t = std::function<void(agentStub_t&)>;

    // What the exchange of a secret says, after something has changed about the agent, which does
    // something when it gets the signal.
    std::string exchange(const act_t& change, const act_t& act = nullptr)
    {
        const bytes secrets = seq({seq({wide(L"KRS Protected Storage"), m_value})});
        const bytes data = seq({seq({}), seq({})});
        const size_t before = traced().size();
        agentStub_t stub;
        change(stub);
        const CKernelHandle signal(OpenEventW(SYNCHRONIZE, FALSE, names[dataReady]));
        std::thread agent([&] {
            if (act && WaitForSingleObject(signal.get(), 10000) == WAIT_OBJECT_0)
                act(stub);
        });
        EXPECT_EQ(S_OK, m_plugin->as<IVLKTBackupRestore3>()->SetPluginData(
                            static_cast<ULONG>(secrets.size()), secrets.data(),
                            static_cast<ULONG>(data.size()), data.data()));
        agent.join();
        EXPECT_TRUE(m_taken || !blockView_t(names[payload]).bytes);
        if (stub.semaphore) {
            EXPECT_EQ(m_countIsTaken, WaitForSingleObject(stub.semaphore.get(), 0) == WAIT_TIMEOUT);
        }
        if (stub.buffer && stub.dataReady) {
            const bool sent = WaitForSingleObject(stub.dataReady.get(), 0) == WAIT_OBJECT_0;
            EXPECT_EQ(sent, blockView_t(names[buffer]).bytes[0] == 2 && !act);
            m_sent |= sent;
        }
        m_taken.reset();
        std::string said = traced().substr(before);
        const std::string front = "BLOBs=0\n";
        said.erase(0, said.find(front) + front.size());
        replaceAll(said, "\n", "|");
        if (const size_t at = said.find(" U '`I04`'SA: "); at != std::string::npos)
            said.erase(at, said.find('|', at) + 1 - at);
        return said;
    }
    void expect(const std::string& name, const std::string& said, const act_t& change,
                int waits = 0, const act_t& act = nullptr)
    {
        SCOPED_TRACE(name);
        std::fprintf(stderr, "%s\n", name.c_str());
        std::string grown = "?";
        for (int round = 0; round < 4 && !grown.empty(); ++round) {
            const heldResources_t before;
            endless = 0, m_sent = false;
            EXPECT_EQ(said, exchange(change, act));
            EXPECT_FALSE(m_sent && !said.empty() && said != noAnswer);
            grown = heldResources_t().grownSince(before);
            EXPECT_EQ(waits, endless);
        }
        EXPECT_EQ("", grown);
        m_countIsTaken = false;
        EXPECT_EQ("", exchange(&agentStub_t::answer));
        ++m_cases;
    }

    const bytes m_value = octets(std::string(10000, 'b') + std::string(2, '\0'));
    CKernelHandle m_taken;
    bool m_countIsTaken = false, m_sent = false;
    const std::string noAnswer = " E 0 cannot transfer the rest from client|";
    int m_cases = 0;
    std::unique_ptr<plugin_t> m_plugin;
};

TEST_F(Link, EachNameMayBeAnothersAndTheAgentMayEndAtAnyStep)
{
    IN_FRESH_PROCESS({
        std::thread([] { Sleep(100000), _exit(9); }).detach();
        expectAll();
    });
}

void Link::expectAll()
{
    m_plugin = std::make_unique<plugin_t>();
    const importPatch_t wait(GetModuleHandleW(L"VLOnlineIDs.dll"), "WaitForSingleObject",
                             reinterpret_cast<void*>(waitImpatiently));
    callAndFail(*m_plugin); // makes the trace
    const auto noBuffer = [](agentStub_t& stub) { stub.buffer.reset(); };
    const auto noWindow = [](agentStub_t& stub) { DestroyWindow(stub.window); };
    exchange(noBuffer), exchange(noWindow); // the first misses differ
    const int right[] = {semaphore, event, event, memory, memory};
    const std::string open =
        " E -2147024890 IPC.Failed to open semaphore 'VLMAX_NIPC_MUTEX'. BAD.|";
    const std::string notMade = " IPC.CreateMMF.2VLA.savefile| E 0 _callserverprocess|";
    const auto said = [&](int name, const std::string& error) {
        const std::string all[] = {
            " E " + error + " IPC.Failed to open semaphore 'VLMAX_NIPC_MUTEX'. BAD.| E " + error +
                " IPC.Failed to create semaphore 'VLMAX_NIPC_MUTEX'. OK. Try to open it.|",
            " E " + error + " no AckEvent|", " E " + error + " no ReadyEvent|",
            " E " + error + " IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER'|",
            " E " + error + " IPC.CreateFileMapping 'VLTEMPLATE' SA=OK| E " + error + notMade};
        return all[name];
    };
    for (const int name : {admission, acknowledge, dataReady, buffer, payload}) {
        for (const int type : {mutex, semaphore, event, memory}) {
            const bool denied = type == right[name];
            if (denied && name == acknowledge) // Wine lets an owner wait in any case
                continue;
            const auto take = [&](agentStub_t& stub) {
                if (CKernelHandle* const object = ofStub(stub, name))
                    object->reset();
                m_taken.reset(make(type, names[name], denied ? nobody() : nullptr));
            };
            const std::string again = denied && name == admission ? open : "";
            expect(std::to_string(name) + " taken by " + std::to_string(type),
                   said(name, denied ? "-2147024891" : "-2147024890") + again +
                       (name == admission ? " E -2147024890 Create Semaphore failed|" : ""),
                   take);
        }
    }
    expect("no events", said(acknowledge, "-2147024890"), [this](agentStub_t& stub) {
        stub.acknowledge.reset(), stub.dataReady.reset();
        m_taken.reset(make(mutex, names[dataReady])); // the error told is the later one's
    });
    const auto taken = [this](const wchar_t* name, DWORD size, DWORD kind) {
        return [=, this](agentStub_t& stub) {
            if (name == names[buffer])
                stub.buffer.reset();
            m_taken.reset(block(name, size, kind));
            stub.answer();
        };
    };
    expect("short payload", " E -2147024774" + notMade, taken(names[payload], 16, PAGE_READWRITE));
    expect("payload without memory", " E -2147024774" + notMade,
           taken(names[payload], 0x10000, PAGE_READWRITE | SEC_RESERVE));
    expect("large payload", "", taken(names[payload], 0x100000, PAGE_READWRITE));
    expect("short buffer", "", taken(names[buffer], 1, PAGE_READWRITE));
    expect("buffer without memory", " E -2147024774" + notMade,
           taken(names[buffer], 0x1000, PAGE_READWRITE | SEC_RESERVE));
    expect(
        "count of 0", " E -2147023436 WaitForSingleObject = ffffffff on Semaphore|",
        [this](agentStub_t& stub) {
            m_countIsTaken = WaitForSingleObject(stub.semaphore.get(), 0) == WAIT_OBJECT_0;
        },
        1);
    expect(
        "no answer", noAnswer, [](agentStub_t&) {}, 1);
    expect("two answers", "", [](agentStub_t& stub) { stub.answer(), stub.answer(); });
    expect("no buffer", " U '`I04`'IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER' MMF.FILE_NOT_FOUND|",
           noBuffer);
    expect("no window", " U '`I04`'NoVLAgent| U VlAgent window NOT found!|", noWindow);
    expect(
        "ends after the signal", noAnswer, [](agentStub_t&) {}, 1,
        [](agentStub_t& stub) {
            for (const int name : {admission, acknowledge, dataReady, buffer})
                ofStub(stub, name)->reset();
        });
    expect(
        "overwrites all and answers twice", "", [](agentStub_t&) {}, 0,
        [](agentStub_t& stub) {
            for (const wchar_t* name : {names[buffer], names[payload]})
                std::memset(blockView_t(name).bytes, 0xFF, 0x1000);
            stub.answer(), stub.answer();
        });
    std::printf("%d ways to have a bad agent\n", m_cases);
}

} // namespace
