#include "runtime/runtime.h"

#include <cstdint>

namespace {

// once_t begins a static variable's guard and a once control alike, zeroed by the compiler.
struct once_t {
    uint8_t done; // the compiler's code reads it too
    uint8_t running;
};

SRWLOCK lock{}; // all zeros are the initial state of both
CONDITION_VARIABLE ended{};

void end(once_t& once, bool done) noexcept
{
    AcquireSRWLockExclusive(&lock);
    once.running = false;
    __atomic_store_n(&once.done, done, __ATOMIC_RELEASE);
    ReleaseSRWLockExclusive(&lock);
    WakeAllConditionVariable(&ended);
}

} // namespace

// The three calls by which the compiler initialises a static variable of a function.
//
// Returns: 1 if the caller has to initialise and then call one of the others
extern "C" int __cxa_guard_acquire(once_t* once) noexcept
{
    if (__atomic_load_n(&once->done, __ATOMIC_ACQUIRE))
        return 0;
    AcquireSRWLockExclusive(&lock);
    while (once->running)
        SleepConditionVariableSRW(&ended, &lock, INFINITE, 0);
    const bool mine = !once->done;
    once->running = mine;
    ReleaseSRWLockExclusive(&lock);
    return mine;
}

extern "C" void __cxa_guard_release(once_t* once) noexcept
{
    end(*once, true);
}

extern "C" void __cxa_guard_abort(once_t* once) noexcept
{
    end(*once, false);
}

// The one call of the thread library that the C++ library makes at its start.
extern "C" int pthread_once(once_t* once, void (*function)())
{
    if (!__cxa_guard_acquire(once))
        return 0;
    try {
        function();
    } catch (...) {
        __cxa_guard_abort(once);
        throw;
    }
    __cxa_guard_release(once);
    return 0;
}
