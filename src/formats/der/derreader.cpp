#include "formats/der/derreader.h"

bool CDerReader::NextHeader(Extent& extent) const noexcept
{
    size_t at = 0;
    // The length's first octet must be there too, hence the 2 and the at + 1 below.
    if (m_rest.size() < 2)
        return false;
    if ((m_rest[at++] & 0x1F) == 0x1F) {
        do {
            if (m_rest.size() <= at + 1)
                return false;
        } while ((m_rest[at++] & 0x80) != 0);
    }
    size_t length = m_rest[at++];
    if (length >= 0x80) {
        size_t octets = length & 0x7F;
        if (octets == 0 || octets > 4 || m_rest.size() - at < octets)
            return false;
        for (length = 0; octets > 0; --octets)
            length = length << 8 | m_rest[at++];
    }
    extent = {at, length};
    return true;
}

bool CDerReader::Next(Extent& extent) const noexcept
{
    Extent next{};
    if (!NextHeader(next) || m_rest.size() - next.header < next.length)
        return false;
    extent = next;
    return true;
}

size_t CDerReader::Announced() const noexcept
{
    Extent next{};
    return NextHeader(next) ? next.header + next.length : 0;
}

bool CDerReader::ReadAny(uint8_t& tag, std::span<const uint8_t>& contents) noexcept
{
    Extent extent{};
    if (!Next(extent))
        return false;
    tag = m_rest[0];
    contents = m_rest.subspan(extent.header, extent.length);
    m_rest = m_rest.subspan(extent.header + extent.length);
    return true;
}

bool CDerReader::Read(uint8_t tag, std::span<const uint8_t>& contents) noexcept
{
    uint8_t found = 0;
    return !m_rest.empty() && m_rest[0] == tag && ReadAny(found, contents);
}

bool CDerReader::ReadElement(std::span<const uint8_t>& element) noexcept
{
    Extent extent{};
    if (!Next(extent))
        return false;
    element = m_rest.first(extent.header + extent.length);
    m_rest = m_rest.subspan(element.size());
    return true;
}
