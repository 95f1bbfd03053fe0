#include "runtime/runtime.h"

#include <ntsecapi.h>

#include <cstdint>

// What the compiler's stack protection asks for. The toolchain's library asks the platform for a
// cryptographic provider at each load, which takes longer than all the rest of a small DLL's load.
extern "C" {
// Lies between a function's arrays and its return address. Until it is random, it has the
// characters that end a text.
uintptr_t __stack_chk_guard = 0xFF0A0D00;

[[noreturn]] void __stack_chk_fail()
{
    __builtin_trap(); // no code that trusts the stack may run any more
}
}

// Not protected itself: it leaves with another value than it came with.
[[gnu::optimize("no-stack-protector")]] void seedStackCheck() noexcept
{
    RtlGenRandom(&__stack_chk_guard, sizeof __stack_chk_guard);
}
