#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// CDerElement is a view of one encoded element, read as the blob classes read theirs, without a
// copy of its bytes. A view without bytes stands for a missing element. Portable.
//
// A Decode operation gives false and leaves its out argument alone when the element doesn't have
// the form. The other readings then fall back to the encoded bytes, tag and length included, as a
// blob that can't be decoded does.
class CDerElement
{
public:
    CDerElement() noexcept = default;
    explicit CDerElement(std::span<const uint8_t> encoded) noexcept : m_encoded(encoded) {}

    std::span<const uint8_t> Encoded() const noexcept { return m_encoded; }

    // DecodeWide reads a BMPString, leaving out an odd last octet, and a UTF8String. It also reads
    // NumericString, PrintableString, T61String, VideotexString, IA5String, GraphicString and
    // VisibleString, whose octets are taken as they are for UTF-16 in host order, two to a unit.
    //
    // units:  all of them, the stored terminator included
    // Errors: std::bad_alloc
    [[nodiscard]] bool DecodeWide(std::u16string& units) const;
    // DecodeOctets reads an OCTET STRING.
    // contents: a view into the element
    [[nodiscard]] bool DecodeOctets(std::span<const uint8_t>& contents) const noexcept;
    // DecodeInteger reads an INTEGER.
    // contents: a view into the element, big-endian, of any number of octets, maybe none
    [[nodiscard]] bool DecodeInteger(std::span<const uint8_t>& contents) const noexcept;

    // WideText gives what DecodeWide reads, up to the first zero or to the end.
    // Errors: std::bad_alloc
    std::u16string WideText() const;
    // NarrowText gives a view of an OCTET STRING's text, up to the first zero or to the end.
    std::string_view NarrowText() const noexcept;
    // Octets gives a view of an OCTET STRING's bytes.
    std::span<const uint8_t> Octets() const noexcept;
    // Integer gives 1 to 4 content octets as an unsigned number; 0 for none, more, or anything but
    // an INTEGER. Not sign-extended: what was written from 0xFFFFFFFF reads back as 0xFF. Intended.
    uint32_t Integer() const noexcept;

private:
    std::span<const uint8_t> m_encoded;
};

// CDerSequenceView holds views of a sequence's elements. It takes 16 bytes for each of them, of a
// few in itself, and copies nothing else.
class CDerSequenceView
{
public:
    // Decode reads the sequence at the front of the bytes and ignores what follows it. The elements
    // themselves are not looked into. False if the bytes aren't a sequence or an element is cut
    // short; the old elements are kept then, and also when it raises.
    //
    // Errors: std::bad_alloc
    [[nodiscard]] bool Decode(std::span<const uint8_t> bytes);
    [[nodiscard]] bool Decode(const CDerElement& element) { return Decode(element.Encoded()); }

    size_t Count() const noexcept { return m_count; }
    // operator[] gives a missing element past the end.
    CDerElement operator[](size_t index) const noexcept
    {
        return index < m_count ? begin()[index] : CDerElement();
    }
    const CDerElement* begin() const noexcept
    {
        return m_count <= m_few.size() ? m_few.data() : m_many.data();
    }
    const CDerElement* end() const noexcept { return begin() + m_count; }

private:
    static constexpr size_t fewElements = 6; // as many as the longest record has

    size_t m_count = 0;
    std::array<CDerElement, fewElements> m_few;
    std::vector<CDerElement> m_many; // instead, if there are more
};
