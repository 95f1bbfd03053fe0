#pragma once

#include "quicklinks/record.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

// QLLookup finds the first record of a file name and profile without a walk through all of them. It
// follows a list that grows at its end, shrinks or is cleared. Portable.
class QLLookup
{
public:
    static constexpr uint32_t anyprofile = 0xFFFFFFFF;
    static constexpr size_t none = SIZE_MAX;

    // first gives the lowest position whose manifest has exactly that file name, and that profile
    // or any.
    size_t first(const std::vector<QLRecord>& records, std::string_view file, uint32_t profile);

    // widen must be called before a record's profile becomes anyprofile, the one change that it may
    // see.
    void widen(const std::vector<QLRecord>& records, size_t position);

    // clear must be called when records were replaced.
    void clear() noexcept;

private:
    void follow(const std::vector<QLRecord>& records);

    // A chain holds the records of one file name and profile in ascending order, apart from others
    // of the same hash. Each record is in two chains, by its own profile and by anyprofile, as the
    // links 2 * position and 2 * position + 1: a look-up meets few cache lines however many there
    // are.
    struct chain_t {
        uint32_t first;
        uint32_t last;
    };
    void append(uint32_t link, size_t key);

    std::unordered_map<size_t, chain_t> m_chains; // by keyof
    std::vector<uint32_t> m_next;                 // of each link
    size_t m_followed = 0;                        // records that are in chains
};
