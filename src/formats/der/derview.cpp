#include "formats/der/derview.h"

#include "formats/der/derheader.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <cstring>

namespace {

std::u16string unitsInHostOrder(std::span<const uint8_t> octets)
{
    std::u16string units(octets.size() / 2, u'\0');
    if (!units.empty())
        std::memcpy(units.data(), octets.data(), 2 * units.size());
    return units;
}

std::u16string unitsHighOctetFirst(std::span<const uint8_t> octets)
{
    std::u16string units(octets.size() / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(octets[2 * i] << 8 | octets[2 * i + 1]);
    return units;
}

size_t countOf(CDerReader rest) noexcept
{
    size_t count = 0;
    for (std::span<const uint8_t> element; rest.ReadElement(element);)
        ++count;
    return count;
}

// likelyCount guesses how many elements of that size a sequence has, so that it need not be walked
// twice. However small they are, the room is a part of the sequence's own size.
size_t likelyCount(size_t size, size_t each) noexcept
{
    each = std::max<size_t>(each, 2); // a tag and a length at least
    return std::min(size / each + size / (16 * each), size / 64);
}

// prefetchAfter fetches the header of a later element, if those between are as large as this one:
// each header says where the next one is, and in a large backup none is in the cache.
void prefetchAfter(std::span<const uint8_t> element, std::span<const uint8_t> contents) noexcept
{
    constexpr size_t ahead = 8;
    const auto at = static_cast<size_t>(element.data() - contents.data()) + ahead * element.size();
    if (at < contents.size())
        __builtin_prefetch(contents.data() + at);
}

std::string_view asText(std::span<const uint8_t> octets)
{
    return {reinterpret_cast<const char*>(octets.data()), octets.size()};
}

} // namespace

bool CDerElement::DecodeWide(std::u16string& units) const
{
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    if (!CDerReader(m_encoded).ReadAny(tag, contents))
        return false;
    switch (tag) {
    case derTag::bmpString:
        units = unitsHighOctetFirst(contents);
        return true;
    case derTag::utf8String:
        units = utf16FromUtf8(asText(contents));
        return true;
    case derTag::numericString:
    case derTag::printableString:
    case derTag::t61String:
    case derTag::videotexString:
    case derTag::ia5String:
    case derTag::graphicString:
    case derTag::visibleString:
        units = unitsInHostOrder(contents);
        return true;
    default:
        return false;
    }
}

bool CDerElement::DecodeOctets(std::span<const uint8_t>& contents) const noexcept
{
    return CDerReader(m_encoded).Read(derTag::octetString, contents);
}

bool CDerElement::DecodeInteger(std::span<const uint8_t>& contents) const noexcept
{
    return CDerReader(m_encoded).Read(derTag::integer, contents);
}

std::u16string CDerElement::WideText() const
{
    std::u16string units;
    if (!DecodeWide(units))
        units = unitsInHostOrder(m_encoded);
    units.resize(std::min(units.size(), units.find(u'\0')));
    return units;
}

std::string_view CDerElement::NarrowText() const noexcept
{
    const std::string_view text = asText(Octets());
    return text.substr(0, text.find('\0'));
}

std::span<const uint8_t> CDerElement::Octets() const noexcept
{
    std::span<const uint8_t> contents = m_encoded;
    (void)DecodeOctets(contents); // refused: the encoded bytes
    return contents;
}

uint32_t CDerElement::Integer() const noexcept
{
    std::span<const uint8_t> contents;
    if (!DecodeInteger(contents) || contents.size() > 4)
        return 0;
    uint32_t value = 0;
    for (const uint8_t octet : contents)
        value = value << 8 | octet;
    return value;
}

bool CDerSequenceView::Decode(std::span<const uint8_t> bytes)
{
    std::span<const uint8_t> contents;
    if (!CDerReader(bytes).Read(derTag::sequence, contents))
        return false;
    CDerReader reader(contents);
    std::span<const uint8_t> element;
    size_t count = 0;
    for (; count < fewElements && !reader.AtEnd(); ++count) {
        if (!reader.ReadElement(element))
            return false;
    }
    if (reader.AtEnd()) { // most are so short, and reading them twice is cheaper than a copy
        reader = CDerReader(contents);
        for (size_t i = 0; i < count && reader.ReadElement(element); ++i)
            m_few[i] = CDerElement(element);
        m_many.clear();
        m_count = count;
        return true;
    }
    std::vector<CDerElement> many;
    const auto read = static_cast<size_t>(element.data() - contents.data());
    many.reserve(fewElements + 1 + likelyCount(contents.size(), read / fewElements));
    for (reader = CDerReader(contents); !reader.AtEnd();) {
        const CDerReader rest = reader;
        if (!reader.ReadElement(element))
            return false;
        prefetchAfter(element, contents);
        if (many.size() == many.capacity())
            many.reserve(many.size() + countOf(rest));
        many.emplace_back(element);
    }
    m_many = std::move(many);
    m_count = m_many.size();
    return true;
}
