#include "runtime/runtime.h"

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// variable_t is a thread-local variable as the compiler describes it.
struct variable_t {
    size_t size;
    size_t alignment;
    void* unused;
    const void* initial; // null: zeros
};

// instance_t is one thread's instance of a variable; the value follows it. A thread has few, so
// they are a list.
struct instance_t {
    const variable_t* variable;
    instance_t* next;
    void* value;
};

void WINAPI freeInstances(void* first) noexcept
{
    for (auto* instance = static_cast<instance_t*>(first); instance;) {
        instance_t* const next = instance->next;
        _aligned_free(instance);
        instance = next;
    }
}

// The place of each thread's list. Made first and the last to go: throwing needs a variable.
[[gnu::init_priority(101)]] const struct place_t {
    place_t() noexcept : index(FlsAlloc(freeInstances)) {}
    ~place_t() { FlsFree(index); } // frees the lists of all threads
    place_t(const place_t&) = delete;
    place_t& operator=(const place_t&) = delete;

    const DWORD index;
} place;

instance_t* makeInstance(const variable_t& variable, instance_t* next) noexcept
{
    const size_t alignment = std::max(variable.alignment, alignof(instance_t));
    const size_t offset = (sizeof(instance_t) + alignment - 1) / alignment * alignment;
    void* const memory = _aligned_malloc(offset + variable.size, alignment);
    if (!memory)
        return nullptr;
    auto* const instance = static_cast<instance_t*>(memory);
    *instance = {&variable, next, static_cast<char*>(memory) + offset};
    if (variable.initial)
        std::memcpy(instance->value, variable.initial, variable.size);
    else
        std::memset(instance->value, 0, variable.size);
    return instance;
}

} // namespace

// The compiler's call for each use of a thread-local variable. It has no way to report a failure. It
// keeps the last error, since throwing and catching come here too.
extern "C" void* __emutls_get_address(const variable_t* variable) noexcept
{
    const DWORD error = GetLastError();
    auto* const first = static_cast<instance_t*>(FlsGetValue(place.index));
    instance_t* instance = first;
    while (instance && instance->variable != variable)
        instance = instance->next;
    if (!instance) {
        instance = makeInstance(*variable, first);
        if (!instance || !FlsSetValue(place.index, instance))
            std::abort();
    }
    SetLastError(error);
    return instance->value;
}
