#include "runtime/runtime.h"

namespace __gnu_cxx {
void __freeres(); // of the library, for tools that look for leaks; in none of its headers
}

namespace {

// Made first, so the last to go: other destructors may still throw.
[[gnu::init_priority(101)]] const struct exceptionPool_t {
    ~exceptionPool_t() { __gnu_cxx::__freeres(); }
} exceptionPool;

} // namespace
