#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

namespace vltrace {

// numberIndex_t finds the numbers of things that are numbered from 0, of which its user holds what
// they are. Takes 6 to 12 bytes for each.
class numberIndex_t
{
public:
    // numberOf gives the number of a thing, the next one if it is new.
    //
    // same:   whether a number is that thing's
    // hashOf: the hash of a number's thing
    uint32_t numberOf(size_t hash, auto same, auto hashOf)
    {
        if (3 * (size_t{m_count} + 1) > 2 * m_slots.size())
            grow(hashOf);
        uint32_t& slot = slotOf(hash, same);
        if (slot == 0)
            slot = ++m_count;
        return slot - 1;
    }

private:
    uint32_t& slotOf(size_t hash, auto same)
    {
        for (size_t i = hash;; ++i) {
            uint32_t& slot = m_slots[i & (m_slots.size() - 1)];
            if (slot == 0 || same(slot - 1))
                return slot;
        }
    }
    void grow(auto hashOf)
    {
        m_slots = {}; // its memory first
        size_t size = 16;
        while (2 * size < 3 * (size_t{m_count} + 1))
            size *= 2;
        m_slots.resize(size);
        for (uint32_t number = 0; number < m_count; ++number)
            slotOf(hashOf(number), [](uint32_t) { return false; }) = number + 1;
    }

    std::vector<uint32_t> m_slots; // a power of two of them: a number and 1, or 0
    uint32_t m_count = 0;
};

// stringTable_t holds each text once. Takes 22 to 28 bytes for each, besides the text.
class stringTable_t
{
public:
    uint32_t numberOf(std::string_view text);
    const std::deque<std::string_view>& all() const noexcept { return m_texts; } // by number

private:
    std::string_view keep(std::string_view text);

    numberIndex_t m_index;
    std::deque<std::string_view> m_texts;
    std::deque<std::vector<char>> m_pieces; // which the texts are in
};

} // namespace vltrace
