#pragma once

#include <cstddef>
#include <string>

// heldResources_t counts what this process holds now.
struct heldResources_t {
    heldResources_t();

    size_t handles = 0;
    size_t indexes = 0;   // of thread-local and fiber-local storage
    size_t blocks = 0;    // of memory, in use in all heaps
    size_t views = 0;     // of files and shared memory
    size_t libraries = 0; // references to all that are loaded

    // grownSince says by how much more than before, at least one for each of so many rounds; empty
    // for no more.
    std::string grownSince(const heldResources_t& before, size_t rounds = 1) const;
};

// grownBy says what a call keeps each time; what it keeps once is a cache, and what one that does the
// same in so many rounds keeps less often is the heap's own.
template <class Call> std::string grownBy(Call call, size_t rounds = 1)
{
    std::string grown = "?";
    for (int round = 0; round < 4 && !grown.empty(); ++round) {
        const heldResources_t before;
        call();
        grown = heldResources_t().grownSince(before, rounds);
    }
    return grown;
}
