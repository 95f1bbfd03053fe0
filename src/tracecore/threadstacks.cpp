#include "tracecore/threadstacks.h"

#include <mutex>

namespace tracecore {

namespace {

constexpr size_t ownerRoom = 10;
constexpr size_t keptFrames = 64; // a stack that was deeper gives its memory back when it empties

constexpr uint64_t longestTick = 200000; // of the system's coarse clock, in 100 ns

uint64_t timeOf(systemClock_t clock) noexcept
{
    FILETIME time;
    clock(&time);
    return (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

// The precise clock is a mere read of memory on every system that has it, unlike the other one. It
// came with version 6.2: an earlier system doesn't load a module that imports it.
systemClock_t entryClock() noexcept
{
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const auto precise = reinterpret_cast<systemClock_t>(
        reinterpret_cast<void*>(GetProcAddress(kernel, "GetSystemTimePreciseAsFileTime")));
    return precise ? precise : GetSystemTimeAsFileTime;
}

} // namespace

SYSTEMTIME traceStackEntry_t::localTime() const noexcept
{
    // The clock of the push can be up to a tick ahead of the one that stamps the records.
    const uint64_t coarse = timeOf(GetSystemTimeAsFileTime);
    const bool ahead = entered > coarse && entered - coarse < longestTick;
    const uint64_t time100 = ahead ? coarse : entered;
    const FILETIME utc{static_cast<DWORD>(time100), static_cast<DWORD>(time100 >> 32)};
    FILETIME local{};
    SYSTEMTIME time{};
    FileTimeToLocalFileTime(&utc, &local);
    FileTimeToSystemTime(&local, &time);
    return time;
}

void threadFrames_t::push(const char* name, uint64_t now)
{
    if (depth == frames.size())
        frames.emplace_back();
    traceStackEntry_t& frame = frames[depth];
    frame.name = name ? name : "";
    frame.entered = now;
    frame.setWritten(false);
    ++depth;
}

threadStacks_t::threadStacks_t() : ownerThread(GetCurrentThreadId()), clock(entryClock())
{
    mainFrame.name = "main";
    mainFrame.entered = timeOf(clock);
    claim(ownerThread).frames.reserve(ownerRoom);
}

void threadStacks_t::push(const char* name)
{
    const uint32_t thread = GetCurrentThreadId();
    threadFrames_t* const mine = find(thread);
    (mine ? *mine : claim(thread)).push(name, timeOf(clock));
}

void threadStacks_t::pop() noexcept
{
    const uint32_t thread = GetCurrentThreadId();
    threadFrames_t* const mine = find(thread);
    if (!mine || !mine->depth)
        return;
    if (--mine->depth)
        return;
    if (mine->frames.size() > keptFrames)
        mine->frames = std::vector<traceStackEntry_t>();
    if (thread != ownerThread)
        release(*mine, thread);
}

traceStackEntry_t& threadStacks_t::current() noexcept
{
    threadFrames_t* const mine = frames();
    return mine && mine->depth ? mine->last() : mainFrame;
}

size_t threadStacks_t::threads()
{
    std::lock_guard guard(lock);
    size_t count = byThread.size();
    for (const slot_t& slot : m_slots)
        count += slot.thread.load(std::memory_order_relaxed) != 0;
    return count;
}

threadFrames_t* threadStacks_t::find(uint32_t thread) noexcept
{
    for (size_t i = 0; i < reach; ++i) {
        slot_t& slot = slotOf(thread, i);
        if (slot.thread.load(std::memory_order_relaxed) == thread)
            return &slot;
    }
    if (!m_crowded.load(std::memory_order_relaxed)) // a thread sees its own count at least
        return nullptr;
    std::lock_guard guard(lock);
    const auto it = byThread.find(thread);
    return it == byThread.end() ? nullptr : &it->second;
}

threadFrames_t& threadStacks_t::claim(uint32_t thread)
{
    for (size_t i = 0; i < reach; ++i) {
        slot_t& slot = slotOf(thread, i);
        uint32_t none = 0;
        if (slot.thread.compare_exchange_strong(none, thread, std::memory_order_acquire))
            return slot;
    }
    std::lock_guard guard(lock);
    threadFrames_t& frames = byThread[thread];
    frames.crowded = true;
    m_crowded.store(static_cast<uint32_t>(byThread.size()), std::memory_order_relaxed);
    return frames;
}

void threadStacks_t::release(threadFrames_t& frames, uint32_t thread) noexcept
{
    if (!frames.crowded) {
        static_cast<slot_t&>(frames).thread.store(0, std::memory_order_release);
        return;
    }
    std::lock_guard guard(lock);
    byThread.erase(thread);
    m_crowded.store(static_cast<uint32_t>(byThread.size()), std::memory_order_relaxed);
}

} // namespace tracecore
