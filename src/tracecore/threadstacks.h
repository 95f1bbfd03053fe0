#pragma once

#include "common/criticalsection.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tracecore {

// A system clock: UTC, in 100 ns since 1601.
using systemClock_t = void(WINAPI*)(FILETIME*);

// traceStackEntry_t is one open function. Asking the system for the local time is expensive, so the
// entry time becomes local only when it is written.
struct traceStackEntry_t {
    traceStackEntry_t() = default;
    traceStackEntry_t(traceStackEntry_t&& other) noexcept // when its thread's stack grows
        : name(std::move(other.name)), entered(other.entered), written(other.isWritten())
    {}

    bool isWritten() const noexcept { return written.load(std::memory_order_relaxed); }
    void setWritten(bool value) noexcept { written.store(value, std::memory_order_relaxed); }
    SYSTEMTIME localTime() const noexcept;

    std::string name;     // UTF-8, a copy of the caller's
    uint64_t entered = 0; // the push, by the system clocks

private:
    std::atomic<bool> written{
        false}; // the entry record was emitted; threads share the main frame's
};

// threadFrames_t is the stack of one thread, outermost first. Frames above depth are kept for their
// memory.
struct threadFrames_t {
    std::vector<traceStackEntry_t> frames;
    size_t depth = 0;
    bool crowded = false; // lies in the map, not in a slot

    void push(const char* name, uint64_t now);
    traceStackEntry_t& last() noexcept { return frames[depth - 1]; }
};

// threadStacks_t is the table of open functions.
//
// A thread's stack is touched by that thread alone, so only finding it needs care: a thread claims
// one of a few slots that its id leads to, and gives it back with its last frame. The lock is for
// the threads that find all of theirs taken, whose stacks lie in the map, and for the main frame.
class threadStacks_t
{
public:
    threadStacks_t();
    threadStacks_t(const threadStacks_t&) = delete;
    threadStacks_t& operator=(const threadStacks_t&) = delete;

    // push opens a function on the calling thread; null counts as an empty name.
    void push(const char* name);

    // pop closes the calling thread's last function, if it has one. A thread without functions has
    // no stack in the table, except the thread that built it.
    void pop() noexcept;

    // current is the calling thread's last open function, or the main frame.
    traceStackEntry_t& current() noexcept;

    // frames is the calling thread's stack, null if it is not in the table.
    threadFrames_t* frames() noexcept { return find(GetCurrentThreadId()); }

    // threads counts the stacks in the table.
    size_t threads();

    const uint32_t ownerThread;
    systemClock_t clock;         // of the entries, a cheap one
    traceStackEntry_t mainFrame; // stands in for threads that have no open function
    criticalSection_t lock;

private:
    static constexpr size_t slotCount = 64;
    static constexpr size_t reach = 4;

    // Two cache lines each, so that threads don't disturb each other.
    struct alignas(128) slot_t : threadFrames_t {
        std::atomic<uint32_t> thread{0}; // 0: free
    };

    slot_t& slotOf(uint32_t thread, size_t i) noexcept
    {
        return m_slots[(thread / 4 + i) % slotCount]; // ids of threads are multiples of 4
    }
    threadFrames_t* find(uint32_t thread) noexcept;
    threadFrames_t& claim(uint32_t thread);
    void release(threadFrames_t& frames, uint32_t thread) noexcept;

    std::array<slot_t, slotCount> m_slots;
    std::map<uint32_t, threadFrames_t> byThread;
    std::atomic<uint32_t> m_crowded{0}; // entries of byThread
};

} // namespace tracecore
