#include "neighbours/settingsprovider.h"
#include "neighbours/vlfpapi.h"
#include "operations.h"
#include "resources/resourceids.h"
#include "support/freshprocess.h"
#include "support/growth.h"
#include "support/linkfixture.h"

#include <comdef.h>

#include <stdexcept>
#include <thread>

// Neighbours that mean no good: libraries that lie, and names of the agent's link that others have.

namespace {

// lie_t is what the functions of the settings and policy libraries do in place of their work, and
// the platform with a string of the branding library.
struct lie_t {
    const char* name;
    HRESULT (*act)();
    std::wstring text = {}; // of a setting, if it is one
};
const lie_t* lie = nullptr;

HRESULT lyingQuery(SettingsRequest* request)
{
    const HRESULT status = lie->act();
    if (SUCCEEDED(status) && !lie->text.empty())
        *static_cast<BSTR*>(request->value) =
            SysAllocStringLen(lie->text.data(), static_cast<UINT>(lie->text.size()));
    *request = {}; // the record is the caller's
    return status;
}
LONG WINAPI lyingPolicy(uint32_t, VLFPPolicyRecord* records)
{
    const HRESULT status = lie->act();
    *records = {nullptr, status, ~0u, ~0ull, ~0ull, ~0ull};
    return status;
}

int nameLoads = 0; // of the product's name
int WINAPI lyingBranding(HMODULE module, UINT id, wchar_t* buffer, int size)
{
    if (id != IDS_PRODUCT_NAME)
        return LoadStringW(module, id, buffer, size);
    ++nameLoads;
    const HRESULT status = lie->act();
    lie->text.copy(buffer, static_cast<size_t>(size - 1));
    return status;
}

void* WINAPI findLiar(HMODULE module, const char* name)
{
    const std::string_view asked(name);
    return asked == "api_settings_query"   ? reinterpret_cast<void*>(lyingQuery)
           : asked.ends_with("SettingsEx") ? reinterpret_cast<void*>(lyingPolicy)
           : asked == "api_settings_set" || asked == "VLFPDoesSecretExist"
               ? reinterpret_cast<void*>(lie->act)
               : reinterpret_cast<void*>(GetProcAddress(module, name));
}

template <HRESULT status> HRESULT gives()
{
    return status;
}
template <DWORD code> HRESULT raises()
{
    RaiseException(code, 0, 0, nullptr);
    return S_OK;
}

const lie_t lies[] = {{"odd failure", gives<HRESULT(0x81234567)>},
                      {"not found", gives<HRESULT(0x80070002)>},
                      {"odd success", gives<0x7FFFFFFF>},
                      {"integer", [] { return throw 7, S_OK; }},
                      {"standard exception", [] { return throw std::runtime_error("lie"), S_OK; }},
                      {"COM error", [] { return throw _com_error(E_ABORT), S_OK; }},
                      {"access violation", raises<EXCEPTION_ACCESS_VIOLATION>},
                      {"another compiler's exception", raises<0xE06D7363>},
                      {"huge text", gives<S_OK>, std::wstring(3'000'000, L'x')},
                      {"huge list", gives<S_OK>, std::wstring(100'000, L'|') + L"C:\\VL\\lie"},
                      {"zeros within", gives<S_OK>, std::wstring(L"C:\\VL\0\\lie", 11)},
                      {"unpaired halves", gives<S_OK>, L"C:\\VL\\\xD800\xDC00\xDC00\\\xD800"},
                      {"nobody's network", gives<S_OK>, L"\\\\?\\UNC\\"}};

std::atomic<size_t> progress{0};

class Liars : public operationsTest
{
protected:
    void SetUp() override
    {
        operationsTest::SetUp();
        setOldSystem(fs::path(moduleFileName(nullptr)).filename()); // for texts with the name
    }
    std::vector<outcome_t> all(const plugin_t& plugin)
    {
        std::vector<outcome_t> outcomes;
        for (const char* scenario :
             {"information", "status", "notification", "backup", "restore", "pluginData"})
            outcomes.push_back(run(plugin, scenario));
        return outcomes;
    }
    std::vector<outcome_t> allByHonest()
    {
        const silentPlugin_t plugin;
        all(plugin);
        return all(plugin);
    }
};

TEST_F(Liars, CanNeitherCrashNorGrowNorSpoilWhatComesLater)
{
    IN_FRESH_PROCESS({
        endWhenStuck(progress);
        const CLoadedModule policy(LoadLibraryW(m_policyLibrary));
        for (const lie_t& told : lies) {
            SCOPED_TRACE(told.name);
            ++progress;
            std::fprintf(stderr, "%s\n", told.name); // the last one is where it ended
            setTracing(told.text.size() < 65536);    // a longer record isn't readable
            const auto before = allByHonest();
            {
                const silentPlugin_t plugin;
                lie = &told;
                nameLoads = 0;
                const HMODULE dll = GetModuleHandleW(L"VLOnlineIDs.dll");
                const importPatch_t find(dll, "GetProcAddress", reinterpret_cast<void*>(findLiar)),
                    name(dll, "LoadStringW", reinterpret_cast<void*>(lyingBranding));
                EXPECT_EQ("", grownBy([&] { all(plugin); }));
                EXPECT_TRUE(nameLoads > 0 || LOBYTE(GetVersion()) != 5);
            }
            EXPECT_TRUE(before == allByHonest());
        }
    });
}

// The platform trusts what such a file says. VL_SOAK takes every octet of its tables.
TEST_F(Liars, BrandingFileMayBeDamagedAnywhere)
{
    IN_FRESH_PROCESS({
        endWhenStuck(progress);
        const std::string sound = fileBytes(m_built / L"Branding.dll");
        const size_t name = sound.find(std::string("\x1A\0V\0e\0", 6)), tables = 0xE00;
        const size_t step = getenv("VL_SOAK") ? 1 : 37;
        for (size_t at = 0; at < tables + 60; at += at < tables ? step : 1) {
            ++progress;
            std::fprintf(stderr, "%zu\n", at);
            std::string bad = sound;
            char& octet = bad[at < tables ? at : name + tables - at];
            octet = static_cast<char>(octet ^ 0x80);
            const fs::path file = m_root / (std::to_wstring(at) + L".dll");
            writeFile(file, bad);
            setValue(HKEY_LOCAL_MACHINE, m_brandingKey, L"DLLPath", file);
            plugin_t().property(propertyName);
        }
        printRuns("damaged branding files", progress);
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

class Link : public installedTest
{
protected:
    using act_t = std::function<void(agentStub_t&)>;
    using badAgent_t = std::pair<std::string, act_t>; // its name, what it does before the exchange

    static CKernelHandle& object(agentStub_t& stub, int name)
    {
        CKernelHandle* const objects[] = {&stub.semaphore, &stub.acknowledge, &stub.dataReady,
                                          &stub.buffer};
        return *objects[name];
    }
    // take gives the name to another's object, or to one that nobody may open.
    act_t take(int name, bool denied)
    {
        return [=, this](agentStub_t& stub) {
            if (name != payload)
                object(stub, name).reset();
            m_taken.reset(!denied             ? CreateMutexW(nullptr, FALSE, names[name])
                          : name == admission ? CreateSemaphoreW(nobody(), 1, 1, names[name])
                          : name == dataReady ? CreateEventW(nobody(), FALSE, FALSE, names[name])
                                              : block(names[name], 1, PAGE_READWRITE, nobody()));
        };
    }
    act_t takeBlock(int name, DWORD size, DWORD kind)
    {
        return [=, this](agentStub_t& stub) {
            if (name == buffer)
                stub.buffer.reset();
            m_taken.reset(block(names[name], size, kind));
            stub.answer();
        };
    }
    std::vector<badAgent_t> badAgents()
    {
        std::vector<badAgent_t> all;
        for (const int name : {admission, acknowledge, dataReady, buffer, payload})
            for (const bool denied : {false, true})
                if (!denied || name != acknowledge) // Wine lets an owner wait in any case
                    all.emplace_back(utf8FromWide(names[name]) + (denied ? " denied" : " taken"),
                                     take(name, denied));
        const badAgent_t others[] = {
            {"no events",
             [this](agentStub_t& stub) {
                 stub.acknowledge.reset();
                 take(dataReady, false)(stub);
             }},
            {"short payload", takeBlock(payload, 16, PAGE_READWRITE)},
            {"payload without memory", takeBlock(payload, 0x10000, PAGE_READWRITE | SEC_RESERVE)},
            {"large payload", takeBlock(payload, 0x100000, PAGE_READWRITE)},
            {"short buffer", takeBlock(buffer, 1, PAGE_READWRITE)},
            {"buffer without memory", takeBlock(buffer, 0x1000, PAGE_READWRITE | SEC_RESERVE)},
            {"count of 0", [](agentStub_t& stub) { WaitForSingleObject(stub.semaphore.get(), 0); }},
            {"no answer", [](agentStub_t&) {}},
            {"no buffer", [](agentStub_t& stub) { stub.buffer.reset(); }},
            {"no window", [](agentStub_t& stub) { DestroyWindow(stub.window); }},
            {"good", &agentStub_t::answer}};
        all.insert(all.end(), std::begin(others), std::end(others));
        return all;
    }

    // exchange says how the exchange of a secret went, and gives the trace of it.
    std::string exchange(const plugin_t& plugin, const badAgent_t& bad)
    {
        const bytes secrets = seq({seq({wide(L"KRS Protected Storage"), m_value})});
        const size_t before = traced().size();
        agentStub_t stub;
        bad.second(stub);
        endless = 0;
        EXPECT_EQ(S_OK, setPluginData(plugin, secrets, seq({seq({}), seq({})})));
        EXPECT_TRUE(m_taken || !blockView_t(names[payload]).bytes);
        std::string went = bad.first;
        if (stub.semaphore && WaitForSingleObject(stub.semaphore.get(), 0) == WAIT_TIMEOUT)
            went += ", busy";
        if (stub.dataReady && WaitForSingleObject(stub.dataReady.get(), 0) == WAIT_OBJECT_0)
            went += ", sent";
        if (stub.buffer && stub.dataReady) {
            EXPECT_EQ(went.ends_with("sent"), blockView_t(names[buffer]).bytes[0] == 2);
        }
        m_taken.reset();
        std::string said = traced().substr(before);
        const std::string front = "BLOBs=0\n";
        said.erase(0, said.find(front) + front.size());
        if (const size_t at = said.find(" U '`I04`'SA: "); at != std::string::npos)
            said.erase(at, said.find('\n', at) + 1 - at);
        return went + (endless ? ", waits for ever\n" : "\n") + said;
    }

    const bytes m_value = octets(std::string(10000, 'b') + std::string(2, '\0'));
    CKernelHandle m_taken;
};

TEST_F(Link, EachNameMayBeAnothers)
{
    IN_FRESH_PROCESS({
        endWhenStuck(progress);
        const plugin_t plugin;
        const importPatch_t wait(GetModuleHandleW(L"VLOnlineIDs.dll"), "WaitForSingleObject",
                                 reinterpret_cast<void*>(waitImpatiently));
        callAndFail(plugin); // makes the trace
        const std::vector<badAgent_t> all = badAgents();
        // The first misses in a process are traced otherwise.
        std::string text = exchange(plugin, all.end()[-3]) + exchange(plugin, all.end()[-2]);
        for (const badAgent_t& bad : all) {
            SCOPED_TRACE(bad.first);
            ++progress;
            std::fprintf(stderr, "%s\n", bad.first.c_str());
            std::string last; // of as many as the look for growth takes
            EXPECT_EQ("", grownBy([&] { last = exchange(plugin, bad); }));
            EXPECT_EQ("good, sent\n", exchange(plugin, all.back()));
            text += last;
        }
        EXPECT_EQ(expected(L"LINK"), text);
    });
}

} // namespace
