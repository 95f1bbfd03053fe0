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

size_t CDerReader::Announced() const noexcept
{
    Extent next{};
    return NextHeader(next) ? next.header + next.length : 0;
}

bool CDerReader::Header(size_t& octets, size_t& length) const noexcept
{
    Extent next{};
    if (!NextHeader(next))
        return false;
    octets = next.header;
    length = next.length;
    return true;
}
