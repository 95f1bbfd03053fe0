#pragma once

#include <cstdint>
#include <span>

// CDerReader takes DER elements (X.690, definite lengths) off the front of bytes it doesn't own. It
// never looks past them. A read that fails returns false and leaves the reader and every out
// argument as they were.
//
// The platform's decoder reads some forms that DER forbids, and hosts have backups from it, so
// these are read too:
//   - a length in more octets than it needs, up to four after the first (04 81 01 41)
//   - an integer with needless octets in front, or with none at all (02 00)
//   - bytes after the outer element, which each operation on a whole element ignores
// and these are refused, as it refuses them:
//   - indefinite length (80), the reserved first octet FF, five or more length octets
//   - an element that is longer than what is left
//   - a tag other than the one asked for, which for a sequence is 30 alone
// It differs in two points: an element with a tag number above 30, whose tag takes more octets, is
// stepped over whole, and a string cut into segments (24) is refused; the format never had either.
// The only limit to an element's size is the 32 bits of a length of four octets.
class CDerReader
{
public:
    explicit CDerReader(std::span<const uint8_t> bytes) noexcept : m_rest(bytes) {}

    bool AtEnd() const noexcept { return m_rest.empty(); }

    // Announced gives the size of the next element as its tag and length state it, whether or not
    // that much is left; 0 if they can't be read.
    size_t Announced() const noexcept;

    // Header gives the octets of the next element's tag and length, and the content octets that these announce, whether or
    // not that much is left. False if they can't be read.
    [[nodiscard]] bool Header(size_t& octets, size_t& length) const noexcept;

    // Read takes an element of that tag.
    // contents: the content octets without tag and length, a view into the reader's bytes
    [[nodiscard]] bool Read(uint8_t tag, std::span<const uint8_t>& contents) noexcept
    {
        uint8_t found = 0;
        return !m_rest.empty() && m_rest[0] == tag && ReadAny(found, contents);
    }

    // ReadAny takes an element of any tag; tag gets the first octet of a tag of several.
    [[nodiscard]] bool ReadAny(uint8_t& tag, std::span<const uint8_t>& contents) noexcept
    {
        Extent extent{};
        if (!Next(extent))
            return false;
        tag = m_rest[0];
        contents = m_rest.subspan(extent.header, extent.length);
        m_rest = m_rest.subspan(extent.header + extent.length);
        return true;
    }

    // ReadElement takes an element of any tag whole, with tag and length.
    [[nodiscard]] bool ReadElement(std::span<const uint8_t>& element) noexcept
    {
        Extent extent{};
        if (!Next(extent))
            return false;
        element = m_rest.first(extent.header + extent.length);
        m_rest = m_rest.subspan(element.size());
        return true;
    }

private:
    struct Extent {
        size_t header; // octets of tag and length
        size_t length; // content octets
    };
    bool NextHeader(Extent& extent) const noexcept;

    // Next is true if all of the next element is there. Most are small, with one octet of each.
    bool Next(Extent& extent) const noexcept
    {
        if (m_rest.size() >= 2 && (m_rest[0] & 0x1F) != 0x1F && m_rest[1] < 0x80)
            extent = {2, m_rest[1]};
        else if (!NextHeader(extent))
            return false;
        return m_rest.size() - extent.header >= extent.length;
    }

    std::span<const uint8_t> m_rest;
};
