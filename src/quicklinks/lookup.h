#pragma once

#include "quicklinks/record.h"

#include <cstddef>
#include <cstdint>
#include <string>
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

    // Each record is listed under its own profile and under anyprofile; positions ascend.
    std::unordered_map<std::string, std::vector<size_t>> m_positions;
    size_t m_followed = 0; // records that are in m_positions
};
