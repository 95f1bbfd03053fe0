#include "common/text.h"
#include "formats/trace/levels.h"
#include "formats/trace/recordformat.h"
#include "formats/trace/textcipher.h"
#include "rounds.h"
#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"
#include "tracecore/tracer.h"

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace tracecore;

namespace {

constexpr int rounds = 41;

volatile uint32_t cipherResult; // keeps the chain from being left out

constexpr const char* scopeName = "CVLKTPages::SetStorageData";

// The straightforward form of a silent pair: a copied name, a lock, an ordered map by thread, the
// local time.
class plainStacks_t
{
public:
    void enter(const char* name)
    {
        std::string copy(name);
        const std::lock_guard guard(m_lock);
        entry_t entry{std::move(copy), {}, 0};
        GetLocalTime(&entry.entered);
        m_byThread[GetCurrentThreadId()].push_back(std::move(entry));
    }

    void leave()
    {
        const std::lock_guard guard(m_lock);
        const auto it = m_byThread.find(GetCurrentThreadId());
        it->second.pop_back();
        if (it->second.empty() && it->first != m_owner)
            m_byThread.erase(it);
    }

private:
    struct entry_t {
        std::string name;
        SYSTEMTIME entered;
        uint8_t written;
    };
    const uint32_t m_owner = GetCurrentThreadId();
    std::map<uint32_t, std::vector<entry_t>> m_byThread;
    criticalSection_t m_lock;
};

template <class Body> auto times(int count, Body body)
{
    return [count, body] {
        for (int i = 0; i < count; ++i)
            body();
    };
}

void tracedPair()
{
    traceScope_t scope(scopeName);
}

void pairs()
{
    static plainStacks_t plain;
    constexpr int count = 20000;
    const traceScope_t outer("outer"); // the measured pair is the third of three
    const traceScope_t inner("inner");
    spdlog::logger off("off", std::make_shared<spdlog::sinks::null_sink_mt>());
    off.set_level(spdlog::level::off);
    bench::CGroup group;
    const size_t mine = group.Add(times(count, tracedPair));
    const size_t straight = group.Add(times(count, [] {
        plain.enter(scopeName);
        plain.leave();
    }));
    const size_t spdlogs = group.Add(times(count, [&off] { off.info(scopeName); }));

    // The second thread is busy in both bodies, so that only what the two share makes the
    // difference.
    enum { own, shared, ended };
    std::atomic<int> work{own};
    std::thread second([&work] {
        for (int now = work; now != ended; now = work) {
            if (now == shared)
                times(10, tracedPair)();
        }
    });
    const auto beside = [&](int what) {
        return group.Add(times(count, tracedPair), [&work, what] { work = what; });
    };
    const size_t busy = beside(shared);
    const size_t alone = beside(own);
    group.Run(rounds);
    work = ended;
    second.join();
    const std::string off3 = "tracing off, depth 3";
    bench::row("silent pair / straightforward form", off3, group.Ratios(mine, straight), 0.25);
    bench::row("silent pair / a level-off call of spdlog", off3, group.Ratios(mine, spdlogs));
    bench::row("silent pair, 2 threads / 1 thread", off3, group.Ratios(busy, alone), 1.2);
}

void records(const std::wstring& folder)
{
    constexpr int count = 500;
    const CKernelHandle mutex(CreateMutexW(nullptr, FALSE, L"Global\\vl_trace_bench"));
    const auto turn = [&mutex](auto body) {
        return [&mutex, body] {
            WaitForSingleObject(mutex.get(), INFINITE);
            body();
            ReleaseMutex(mutex.get());
        };
    };
    theTracer().nextPoll = MAXDWORD;
    theTracer().mode = sinkFileNew;
    traceState().sink.store(
        std::make_shared<outputStorageFile_t>(folder + L"vl_trace_bench.trc3", true));
    const traceScope_t outer("outer");
    const traceScope_t inner("inner");
    const std::wstring text = L"0123456789 a message of the usual length, sixty-four bytes long.";
    const CFileHandle file(CreateFileW((folder + L"vl_trace_bench.bin").c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    const std::vector<char> bytes(recordHeaderSize + text.size());
    spdlog::logger flushing("flushing", std::make_shared<spdlog::sinks::basic_file_sink_mt>(
                                            utf8FromWide(folder + L"vl_trace_bench.log")));
    flushing.flush_on(spdlog::level::info);
    const std::string narrow(text.begin(), text.end());
    bench::CGroup group;
    const size_t silent = group.Add(times(count, tracedPair));
    const size_t wait = group.Add(times(count, turn([] {})));
    const size_t message = group.Add(times(count, [&text] { traceWrite(levelMessage, text); }));
    const size_t seekAndWrite =
        group.Add(times(count, turn([&] {
                            DWORD written = 0;
                            SetFilePointer(file.get(), 0, nullptr, FILE_END);
                            WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()),
                                      &written, nullptr);
                        })));
    const size_t spdlogs = group.Add(times(count, [&] { flushing.info(narrow); }));
    group.Run(rounds);
    bench::row("silent pair / wait and release of the named mutex", "file tracing on, depth 3",
               group.Ratios(silent, wait), 0.01);
    bench::row("message / mutex pair, seek, write", "64 characters",
               group.Ratios(message, seekAndWrite), 1.10);
    bench::row("message / flushing file sink of spdlog", "64 characters",
               group.Ratios(message, spdlogs));
    traceState().sink.store(nullptr);
}

void scrambling()
{
    std::vector<uint8_t> text(1 << 16);
    bench::CGroup group;
    const size_t mine = group.Add([&text] { scrambleText(text.data(), text.size()); });
    const size_t chain = group.Add([&text] {
        textCipher_t cipher;
        for (size_t i = 0; i < text.size() / 8; ++i)
            cipher.encipher();
        cipherResult = cipher.y ^ cipher.z;
    });
    group.Run(rounds);
    bench::row("scrambling / its chain of enciphering alone", "64 KiB", group.Ratios(mine, chain),
               1.05);
}

} // namespace

int main()
{
    wchar_t folder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, folder);
    pairs();
    records(folder);
    scrambling();
    for (const wchar_t* name : {L"vl_trace_bench.trc3", L"vl_trace_bench.bin"})
        DeleteFileW((std::wstring(folder) + name).c_str());
    return 0;
}
