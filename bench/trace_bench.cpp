#include "formats/trace/levels.h"
#include "formats/trace/recordformat.h"
#include "formats/trace/textcipher.h"
#include "ratio.h"
#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"
#include "tracecore/tracer.h"

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

bool allWithin = true;
volatile uint32_t cipherResult; // keeps the chain from being left out

void row(const char* name, double limit, const std::function<void()>& measured,
         const std::function<void()>& baseline)
{
    allWithin = bench::ratio(name, limit, 41, measured, baseline) <= limit && allWithin;
}

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
    const auto baseline = [] {
        plain.enter(scopeName);
        plain.leave();
    };
    row("tracing off: silent pair / straightforward form", 0.30, times(count, tracedPair),
        times(count, baseline));
    {
        traceScope_t outer("outer");
        row("tracing off: inner silent pair / straightforward form", 0.30, times(count, tracedPair),
            times(count, baseline));
    }

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
    const auto beside = [&work](int what) {
        return [&work, what] {
            work = what;
            times(count, tracedPair)();
        };
    };
    row("tracing off: with a second thread tracing / alone", 1.50, beside(shared), beside(own));
    work = ended;
    second.join();
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
    traceScope_t open("open");
    row("tracing on: silent pair / wait and release of the mutex", 0.10, times(count, tracedPair),
        times(count, turn([] {})));

    const std::wstring text = L"0123456789 a message of the usual length, sixty-four bytes long.";
    const CFileHandle file(CreateFileW((folder + L"vl_trace_bench.bin").c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    const std::vector<char> bytes(recordHeaderSize + text.size());
    traceWrite(levelMessage, text);
    row("tracing on: message / mutex pair, seek and write", 1.25,
        times(count, [&text] { traceWrite(levelMessage, text); }),
        times(count, turn([&] {
                  DWORD written = 0;
                  SetFilePointer(file.get(), 0, nullptr, FILE_END);
                  WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                            nullptr);
              })));
    traceState().sink.store(nullptr);
}

void scrambling()
{
    std::vector<uint8_t> text(1 << 16);
    bench::ratio(
        "scrambling / its chain of enciphering alone", 1.15, 41,
        [&text] { scrambleText(text.data(), text.size()); },
        [&text] {
            textCipher_t cipher;
            for (size_t i = 0; i < text.size() / 8; ++i)
                cipher.encipher();
            cipherResult = cipher.y ^ cipher.z;
        });
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
    return allWithin ? 0 : 1;
}
