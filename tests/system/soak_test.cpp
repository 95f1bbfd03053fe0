#include "operations.h"
#include "support/growth.h"
#include "support/meeting.h"

#include <atomic>
#include <chrono>
#include <iterator>
#include <random>
#include <thread>

// Every operation, good and refused, many times over and from many threads at a time.
//
// VL_SOAK in the environment is how many seconds the threads run, and means 10,000 calls of each.

namespace {

const wchar_t* const soak = _wgetenv(L"VL_SOAK");
std::atomic<DWORD> late{0}; // milliseconds

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class Soak : public operationsTest
{
protected:
    // Two calls of each thread later, a look at the switch that had begun before has ended.
    bool waitForCalls() const
    {
        const std::vector<uint32_t> before(std::begin(m_done), std::end(m_done));
        const auto start = std::chrono::steady_clock::now();
        for (size_t i = 0; i < std::size(m_done) && secondsSince(start) < 60; Sleep(1))
            i += m_done[i] >= before[i] + 2;
        return secondsSince(start) < 60;
    }
    // change lets another process write a value, below HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER.
    static void change(const std::wstring& value, const std::wstring& type, const std::wstring& to)
    {
        const std::wstring line = L"add HK" + value + L" /t REG_" + type + L" /f /d \"" + to + L'"';
        EXPECT_EQ(0u, process_t(LR"(C:\windows\system32\reg.exe)", line).result().status);
    }
    // turnTo lets the next call look at the switch, and one that looked too early look again.
    bool turnTo(const wchar_t* on) const
    {
        change(LR"(LM\SOFTWARE\Veltrano\Tracing /v DoTrace)", L"DWORD", on);
        late += 40000;
        const bool alive = waitForCalls();
        late += 40000;
        return alive && waitForCalls();
    }
    // Each call, with its number, is traced.
    void work(const plugin_t& plugin, size_t index)
    {
        std::minstd_rand random(static_cast<unsigned>(index + 1));
        value_t number(bytes{});
        m_together.arriveAndWait(); // at the first use
        plugin.make()->Release();
        for (const char* const name : {"information", "backup"})
            m_first[index] += run(plugin, name).given;
        m_together.arriveAndWait();
        for (uint32_t next = 1000000; !m_enough; m_done[index] = next++) {
            plugin.as<IVLKTPluginInfo>()->GetInfo(next, &number);
            if (next % 4 == 0)
                run(plugin, operationNames[random() % std::size(operationNames)]);
        }
    }
    // Numbered calls stand whole among the records of their thread, and none is left out.
    void expectNumbers(const decodedTrace_t& trace)
    {
        const std::string front = ">CVLKTPages::GetInfo\nU", back = " = [8209]\nE-2147023288 \n<\n";
        std::map<DWORD, std::string> lines;
        for (const auto& [thread, level, text] : trace.records) {
            ASSERT_TRUE(std::strchr("tTNEU<>", level)) << "no level: " << level;
            if (!std::strchr("tT", level))
                lines[thread] += level + text + '\n';
        }
        for (const auto& [thread, text] : lines) {
            size_t at = text.find(front + '1');
            const size_t last = text.rfind(front + '1'); // may be cut
            if (at == last)
                continue;
            const uint32_t end = std::stoul(text.substr(last + front.size(), 7));
            for (uint32_t n = std::stoul(text.substr(at + front.size(), 7)); n < end; ++n) {
                at = text.find(front + std::to_string(n) + back, at);
                ASSERT_NE(std::string::npos, at) << "number " << n << " of thread " << thread;
                ++m_numbers;
            }
        }
    }

    std::atomic<uint32_t> m_done[8] = {}; // by thread, its last number
    std::atomic<bool> m_enough{false};
    meeting_t m_together{8};
    std::string m_first[8]; // by thread, what it got then
    size_t m_numbers = 0;
};

TEST_F(Soak, ManyCallsKeepNothing)
{
    const size_t count = soak ? 10000 : 60;
    const CLoadedModule policy(LoadLibraryW(m_policyLibrary)); // loading it each time takes long
    const silentPlugin_t plugin;
    std::printf("%zu calls of each operation:\n", count);
    for (const char* const name : operationNames) {
        SCOPED_TRACE(name);
        const auto start = std::chrono::steady_clock::now();
        run(plugin, name);
        const auto calls = [&] {
            for (size_t i = 0; i < count; ++i)
                run(plugin, name);
        };
        const std::string grown = grownBy(calls, count);
        EXPECT_EQ("", grown);
        std::printf("  %-16s +%-40s %6.1f s\n", name, grown.empty() ? "0" : grown.c_str(),
                    secondsSince(start));
        std::ofstream(m_traceFile).flush(); // cuts it
    }
}

TEST_F(Soak, MixedCallsLoseNoRecordBetweenTwoFlipsOfTheSwitch)
{
    const double seconds = soak ? _wtoi(soak) : 8;
    setTracing(0);
    const silentPlugin_t plugin;
    const importPatch_t ticks(GetModuleHandleW(L"VLOnlineIDs.dll"), "GetTickCount",
                              reinterpret_cast<void*>(+[] { return GetTickCount() + late; }));
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::size(m_done); ++i)
        threads.emplace_back([&, i] { work(plugin, i); });
    std::atomic<bool> answers{true};
    std::thread agent([&] {
        while (answers)
            if (WaitForSingleObject(m_agentStub.dataReady.get(), 50) == WAIT_OBJECT_0)
                m_agentStub.answer();
    });
    unsigned rounds = 0;
    const auto start = std::chrono::steady_clock::now();
    while (!HasFailure() && secondsSince(start) < seconds) {
        const fs::path file = m_root / (L"trace" + std::to_wstring(++rounds) + L".trc3");
        setValue(HKEY_LOCAL_MACHINE, m_key + LR"(\Tracing)", L"FileName", file);
        bool alive = turnTo(L"1");
        const std::wstring now = rounds % 2 ? L"1" : L"0";
        change(LR"(CU\SOFTWARE\Veltrano\Settings /v path_alienstorage_dirs)", L"SZ",
               L"C:\\VL\\" + now);
        change(LR"(LM\SOFTWARE\Veltrano\VLFPApi\Policy /v )"
               LR"(CommonSettings\{42F9948B-B690-4325-A073-63A8BF31FF32}\DisableApps)",
               L"DWORD", now);
        alive = alive && turnTo(L"0");
        if (!alive) {
            ADD_FAILURE() << "a thread hangs";
            std::fflush(nullptr);
            _exit(1); // it has our objects
        }
        try {
            expectNumbers(decodeTrace(fileBytes(file)));
        } catch (const std::exception& torn) {
            ADD_FAILURE() << torn.what();
        }
        fs::remove(file);
    }
    m_enough = true;
    for (auto& thread : threads)
        thread.join();
    for (const std::string& first : m_first)
        EXPECT_EQ(m_first[0], first);
    answers = false;
    agent.join();
    EXPECT_GT(m_numbers, 0u);
    std::printf("8 threads, %.0f s: %u traces, %zu numbered calls between flips, %s\n",
                secondsSince(start), rounds, m_numbers, HasFailure() ? "one lost" : "none lost");
}

} // namespace
