#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vltrace {

// edit_t replaces a part of one sequence by a part of the other.
struct edit_t {
    size_t one;     // where, in the one
    size_t removed; // elements of it
    size_t other;   // where, in the other
    size_t added;   // elements of it
};

// compareSequences gives the edits that turn one sequence into the other, in their order. They are
// as few as possible (E. Myers, An O(ND) Difference Algorithm) unless the sequences have next to
// nothing in common: then one edit replaces what is between their equal beginnings and ends.
std::vector<edit_t> compareSequences(std::span<const uint32_t> one,
                                     std::span<const uint32_t> other);

// hunk_t is a group of edits with what is equal around them.
struct hunk_t {
    size_t one;    // where it begins, in the one
    size_t other;  // and in the other
    size_t oneEnd; // where it ends, in the one
    std::vector<edit_t> edits;
};

// hunksOf groups edits that are near each other.
// size: of the one sequence
std::vector<hunk_t> hunksOf(const std::vector<edit_t>& edits, size_t size);

} // namespace vltrace
