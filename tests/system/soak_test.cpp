#include "operations.h"
#include "support/growth.h"
#include "support/patchimport.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <random>
#include <thread>

// Every operation, good and failing, from many threads at a time and many times over.
//
// VL_SOAK in the environment is how many seconds the threads run, and means 10,000 calls of each.

namespace {

const wchar_t* const soak = _wgetenv(L"VL_SOAK");

class Soak : public operationsTest
{
protected:
    struct row_t {
        const char* name;
        HRESULT status; // on a whole installation
        std::function<HRESULT(const plugin_t&)> call;
    };

    HRESULT good(const plugin_t& plugin, const char* scenario)
    {
        outcome_t outcome = run(plugin, scenario);
        outcome.statuses.push_back(S_OK);
        return *std::find_if_not(outcome.statuses.begin(), outcome.statuses.end() - 1,
                                 [](HRESULT status) { return status == S_OK; });
    }
    static HRESULT factoryGives(const plugin_t& plugin, IUnknown* outer, REFIID wanted)
    {
        void *factory = nullptr, *object = nullptr;
        plugin.entry<decltype(DllGetClassObject)>("DllGetClassObject")(CLSID_CVLKTPages,
                                                                       IID_IClassFactory, &factory);
        const auto made = static_cast<IClassFactory*>(factory);
        const HRESULT status = made->CreateInstance(outer, wanted, &object);
        made->Release();
        return status;
    }
    static HRESULT restores(const plugin_t& plugin, const bytes& data)
    {
        value_t value(data);
        return plugin.as<IVLKTBackupRestore2>()->SetStorageData(&value);
    }
    static HRESULT takes(const plugin_t& plugin, const bytes& secrets, const bytes& data)
    {
        return plugin.as<IVLKTBackupRestore3>()->SetPluginData(
            static_cast<ULONG>(secrets.size()), secrets.data(), static_cast<ULONG>(data.size()),
            data.data());
    }
    // A disabled application gives a text and a failure at once.
    static HRESULT disabled(const plugin_t& plugin)
    {
        ULONG status = 0;
        value_t text;
        plugin.as<IVLKTDisableApp>()->DisableLocal(1);
        text.vt = VT_BSTR;
        text.bstrVal = nullptr;
        const HRESULT result = plugin.as<IVLKSecurityStatus>()->GetStatus(&status, &text.bstrVal);
        plugin.as<IVLKTDisableApp>()->DisableLocal(0);
        return result;
    }

    const bytes m_garbage = bytes(300, 0x30);
    const std::vector<row_t> m_rows = {
        {"information", HRESULT_FROM_WIN32(ERROR_UNKNOWN_PROPERTY),
         [this](auto& p) { return good(p, "information"); }},
        {"status", S_OK, [this](auto& p) { return good(p, "status"); }},
        {"notification", S_OK, [this](auto& p) { return good(p, "notification"); }},
        {"backup", S_OK, [this](auto& p) { return good(p, "backup"); }},
        {"restore", S_OK, [this](auto& p) { return good(p, "restore"); }},
        {"plug-in data", S_OK, [this](auto& p) { return good(p, "pluginData"); }},
        {"registration", S_OK, [this](auto& p) { return good(p, "registration"); }},
        {"creation", S_OK, [this](auto& p) { return good(p, "creation"); }},
        {"null property", E_POINTER,
         [](auto& p) { return p.template as<IVLKTElementUI>()->GetProperty(1, nullptr); }},
        {"disabled status", E_NOTIMPL, [](auto& p) { return disabled(p); }},
        {"refused array", E_UNEXPECTED, [](auto& p) { return restores(p, seq({})); }},
        {"array of garbage", E_UNEXPECTED, [this](auto& p) { return restores(p, m_garbage); }},
        {"elements of garbage", S_OK,
         [this](auto& p) {
             return restores(p, seq({m_garbage, seq({m_garbage, seq({})})}));
         }},
        {"empty array", E_UNEXPECTED, [](auto& p) { return restores(p, {}); }},
        {"no array", E_INVALIDARG,
         [](auto& p) {
             value_t none;
             return p.template as<IVLKTBackupRestore2>()->SetStorageData2(0, &none);
         }},
        {"refused plug-in data", E_UNEXPECTED,
         [this](auto& p) { return takes(p, m_secrets, m_garbage); }},
        {"no plug-in data", E_POINTER, [this](auto& p) { return takes(p, m_secrets, {}); }},
        {"aggregation", CLASS_E_NOAGGREGATION,
         [](auto& p) { return factoryGives(p, p.template as<IUnknown>(), IID_IUnknown); }},
        {"unknown interface", E_NOINTERFACE,
         [](auto& p) { return factoryGives(p, nullptr, IID_IDispatch); }}};
};

TEST_F(Soak, ManyCallsKeepNothing)
{
    const size_t count = soak ? 10000 : 60;
    const CLoadedModule policy(LoadLibraryW(m_policyLibrary)); // loading it each time takes long
    const std::pair<const char*, std::function<void()>> installations[] = {
        {"whole", nullptr}, {"without registry keys and an agent", [this] {
                                 for (const wchar_t* key : {L"\\Applications", L"\\Branding"})
                                     RegDeleteTreeW(HKEY_LOCAL_MACHINE, (m_key + key).c_str());
                                 DestroyWindow(FindWindowW(agentWindowName, nullptr));
                             }}};
    for (const auto& [installation, change] : installations) {
        if (change)
            change();
        const plugin_t plugin;
        const importPatch_t shell(GetModuleHandleW(L"VLOnlineIDs.dll"), "ShellExecuteW",
                                  reinterpret_cast<void*>(+[] { return INT_PTR{33}; }));
        std::printf("%zu calls of each operation, %s:\n", count, installation);
        for (const auto& [name, status, call] : m_rows) {
            SCOPED_TRACE(testing::Message() << name << ", " << installation);
            std::string grown;
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < 3; ++i) {
                const HRESULT result = call(plugin);
                if (!change) {
                    EXPECT_EQ(status, result);
                }
            }
            for (int round = 0; round < 3 && (round == 0 || !grown.empty()); ++round) {
                const heldResources_t before;
                for (size_t i = 0; i < count; ++i)
                    call(plugin);
                grown = heldResources_t().grownSince(before);
            }
            EXPECT_EQ("", grown);
            const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
            std::printf("  %-22s %-70s %6.1f s\n", name,
                        grown.empty() ? "+0 handles, indexes, blocks, views, library references"
                                      : grown.c_str(),
                        took.count());
            std::ofstream(m_traceFile).flush(); // cuts it
        }
    }
}

// What the threads share.
struct workers_t {
    struct worker_t {
        std::atomic<uint32_t> done{0}; // the number of the last numbered call that came back
        std::atomic<DWORD> thread{0};
        std::atomic<size_t> calls{0};
    };
    const plugin_t plugin;
    std::atomic<bool> enough{false};
    worker_t all[8];
};

// A thousand times as fast, so that a look at the switch is due each 30 ms. The first call is late
// enough for any look.
DWORD WINAPI quickTicks()
{
    static std::atomic<DWORD> start{0};
    DWORD none = 0;
    const DWORD now = GetTickCount() | 1;
    return start.compare_exchange_strong(none, now) ? MAXDWORD : 30000 + (now - none) * 1000;
}

class Threads : public Soak
{
protected:
    // Each number is in the trace, if there is one: the class has no property of it.
    void work(workers_t& workers, size_t index)
    {
        auto& mine = workers.all[index];
        mine.thread = GetCurrentThreadId();
        std::minstd_rand random(static_cast<unsigned>(index + 1));
        value_t number(bytes{});
        for (uint32_t next = 1; !workers.enough; ++next) {
            workers.plugin.as<IVLKTPluginInfo>()->GetInfo(next, &number);
            mine.done = next;
            if (next % 4 != 0)
                continue;
            try {
                m_rows[random() % m_rows.size()].call(workers.plugin);
            } catch (const fs::filesystem_error&) { // ours: a listed file has gone
            }
            ++mine.calls;
        }
    }
    std::vector<uint32_t> numbers() const
    {
        std::vector<uint32_t> done;
        for (const auto& worker : m_workers->all)
            done.push_back(worker.done);
        return done;
    }
    // Two calls later a look at the switch that had begun before has ended.
    bool waitForCalls() const
    {
        const auto before = numbers();
        for (const auto start = GetTickCount(); GetTickCount() - start < 60000; Sleep(1)) {
            const auto now = numbers();
            if (std::equal(now.begin(), now.end(), before.begin(),
                           [](uint32_t a, uint32_t b) { return a >= b + 2; }))
                return true;
        }
        return false;
    }
    // A thread that has seen an expired switch deletes it a moment later, whatever it says by then.
    bool turnTo(DWORD on) const
    {
        DWORD now = 2, size = sizeof now;
        for (int i = 0; i < 100 && now != on; ++i, size = sizeof now) {
            setTracing(on);
            if (!waitForCalls())
                return false;
            now = on;
            if (RegGetValueW(HKEY_LOCAL_MACHINE, (m_key + LR"(\Tracing)").c_str(), L"DoTrace",
                             RRF_RT_REG_DWORD, nullptr, &now, &size) != ERROR_SUCCESS)
                now = 0;
        }
        Sleep(40);
        return waitForCalls();
    }
    // flip gives a switch of the outside world another value.
    void flip(unsigned number) const
    {
        DWORD flag = number % 2;
        setTracing(flag);
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\VLFPApi\Policy)",
                        LR"(CommonSettings\{42F9948B-B690-4325-A073-63A8BF31FF32}\DisableApps)",
                        REG_DWORD, &flag, sizeof flag);
        setValue(HKEY_CURRENT_USER, m_key + L"\\Settings", L"useGrabbingCreds",
                 std::to_wstring(flag));
        setValue(HKEY_CURRENT_USER, m_key + L"\\Settings", L"path_alienstorage_dirs",
                 flag ? L"C:\\VL\\a|C:\\VL\\b" : L"");
        Sleep(number * 7 % 50);
    }
    // Each numbered call of these stands whole among the records of its thread.
    void expectNumbers(const decodedTrace_t& trace, const std::vector<uint32_t>& from,
                       const std::vector<uint32_t>& to)
    {
        std::map<DWORD, std::string> lines;
        for (const auto& [thread, level, text] : trace.records) {
            ASSERT_TRUE(std::strchr("tTNEU<>", level)) << "no level: " << level;
            if (!std::strchr("tT", level))
                lines[thread] += level + text + '\n';
        }
        for (size_t i = 0; i < from.size(); ++i) {
            const std::string& mine = lines[m_workers->all[i].thread];
            size_t at = 0;
            for (uint32_t n = from[i] + 2; n <= to[i]; ++n, ++m_numbers) { // the next may be inside
                at = mine.find(">CVLKTPages::GetInfo\nU" + std::to_string(n) +
                                   " = [8209]\nE-2147023288 \n<\n",
                               at);
                ASSERT_NE(std::string::npos, at) << "number " << n << " of thread " << i;
            }
        }
    }

    size_t m_numbers = 0, m_records = 0;
    workers_t* m_workers = nullptr;
};

TEST_F(Threads, MixedCallsLoseNoRecordBetweenTwoFlipsOfTheSwitch)
{
    const double seconds = soak ? _wtoi(soak) : 8;
    const std::wstring tracing = m_key + LR"(\Tracing)";
    const DWORD append = 0;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, tracing.c_str(), L"NewFileAlways", REG_DWORD, &append,
                    sizeof append);
    setTracing(0);
    m_workers = new workers_t;
    const HMODULE dll = GetModuleHandleW(L"VLOnlineIDs.dll");
    auto patches = std::make_unique<std::pair<importPatch_t, importPatch_t>>(
        std::piecewise_construct,
        std::forward_as_tuple(dll, "GetTickCount", reinterpret_cast<void*>(quickTicks)),
        std::forward_as_tuple(dll, "ShellExecuteW",
                              reinterpret_cast<void*>(+[] { return INT_PTR{33}; })));
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::size(m_workers->all); ++i)
        threads.emplace_back([this, i] { work(*m_workers, i); });
    std::atomic<bool> answers{true};
    std::thread agent([&] {
        while (answers)
            if (WaitForSingleObject(m_agentStub.dataReady.get(), 50) == WAIT_OBJECT_0)
                m_agentStub.answer();
    });
    unsigned flips = 0, rounds = 0;
    bool alive = true;
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    while (alive && !HasFailure() && elapsed() < seconds) {
        const fs::path file = m_root / (L"trace" + std::to_wstring(++rounds) + L".trc3");
        setValue(HKEY_LOCAL_MACHINE, tracing, L"FileName", file);
        for (int i = 0; i < 5; ++i)
            flip(++flips + rounds);
        alive = turnTo(1);
        const auto from = numbers();
        Sleep(150);
        const auto to = numbers();
        alive = alive && turnTo(0);
        try {
            const auto trace = decodeTrace(fileBytes(file));
            m_records += trace.records.size();
            expectNumbers(trace, from, to);
        } catch (const std::exception& torn) {
            ADD_FAILURE() << torn.what();
        }
        fs::remove(file);
    }
    m_workers->enough = true;
    if (!alive) {
        ADD_FAILURE() << "a thread hangs";
        std::fflush(nullptr);
        _exit(1); // it has our objects
    }
    size_t calls = 0;
    for (auto& thread : threads)
        thread.join();
    answers = false;
    agent.join();
    for (const auto& worker : m_workers->all)
        calls += worker.calls;
    std::printf("8 threads, %.0f s: %zu mixed calls, %u flips, %u traces with %zu records, "
                "%zu numbered calls between flips, %s\n",
                elapsed(), calls, flips, rounds, m_records, m_numbers,
                HasFailure() ? "one lost" : "none lost");
    patches.reset();
    delete m_workers;
}

} // namespace
