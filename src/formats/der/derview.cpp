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
    size_t count = 0;
    std::array<CDerElement, fewElements> few;
    std::vector<CDerElement> many;
    CDerReader reader(contents);
    for (std::span<const uint8_t> element; !reader.AtEnd(); ++count) {
        const CDerReader rest = reader;
        if (!reader.ReadElement(element))
            return false;
        if (count < few.size()) {
            few[count] = CDerElement(element);
            continue;
        }
        if (many.empty()) {
            const auto read = static_cast<size_t>(element.data() - contents.data());
            many.reserve(few.size() + 1 + likelyCount(contents.size(), read / few.size()));
            many.assign(few.begin(), few.end());
        } else if (many.size() == many.capacity()) {
            many.reserve(count + countOf(rest));
        }
        many.emplace_back(element);
    }
    m_few = few;
    m_many = std::move(many);
    m_count = count;
    return true;
}
