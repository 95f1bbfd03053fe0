#pragma once

#include <cstddef>
#include <string>

// heldResources_t counts what this process holds now.
struct heldResources_t {
    heldResources_t();

    size_t handles = 0;
    size_t blocks = 0; // of memory, in use in all heaps

    // grownSince tells by how much more than before; empty for no more.
    std::string grownSince(const heldResources_t& before) const;
};
