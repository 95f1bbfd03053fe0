#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

// CDerNode is one element of a DER tree (X.690) that is to be written: nothing yet, a leaf, or a
// sequence of nodes. The tree is measured in one pass and written in another, into a buffer of
// exactly that size. Portable.
//
// An empty node adds no bytes at all: later elements of its sequence move one place forward.
//
// Errors: a setter raises std::bad_alloc and leaves the node as it was
class CDerNode
{
public:
    bool IsEmpty() const noexcept { return std::holds_alternative<std::monostate>(m_content); }

    void SetSequence(size_t count); // count empty children; without any it encodes as 30 00
    // Child gives one of a sequence's children; anything else has none.
    CDerNode& Child(size_t index) { return std::get<Children>(m_content)[index]; }
    size_t Count() const noexcept; // children; 0 for anything but a sequence

    // SetOctets borrows the bytes: they must stay until the tree is written. keepAlive, if given,
    // is held by the node.
    void SetOctets(std::span<const uint8_t> bytes, std::shared_ptr<const void> keepAlive = {});
    // SetWide copies the text up to its first zero as a BMPString that ends in 00 00.
    void SetWide(std::u16string_view text);
#ifdef _WIN32
    void SetWide(std::wstring_view text);
#endif
    // SetNarrow copies the text up to its first zero as an OCTET STRING that ends in 00.
    void SetNarrow(std::string_view text);
    // SetUnits copies UTF-16 in host order as a BMPString, zeros and all; half a unit at its end is
    // left out.
    void SetUnits(std::span<const uint8_t> units);
    // SetNumber copies one signed number, its bytes little-endian, in the shortest form; none is 0.
    void SetNumber(std::span<const uint8_t> bytes);
    // SetInteger takes the four bytes as one signed number: 0xFFFFFFFF is 02 01 FF.
    void SetInteger(uint32_t value);
    // SetEncoded borrows an element as it is, tag and length with it.
    void SetEncoded(std::span<const uint8_t> element) noexcept;

    // Measure gives the encoded size of the whole tree in bytes, 0 for an empty node, and keeps
    // each node's part of it for Write. Write then stores exactly that many bytes and gives their
    // end. A change needs a new Measure.
    size_t Measure() noexcept;
    uint8_t* Write(uint8_t* out) const noexcept;

    // Encode is Measure and Write into a buffer of its own. Errors: std::bad_alloc.
    std::vector<uint8_t> Encode();

private:
    struct Borrowed {
        std::span<const uint8_t> bytes;
        std::shared_ptr<const void> keepAlive;
    };
    struct Encoded {
        std::span<const uint8_t> element;
    };
    using Owned = std::vector<uint8_t>;
    using Children = std::vector<CDerNode>;

    std::variant<std::monostate, Owned, Borrowed, Encoded, Children> m_content;
    size_t m_size = 0; // content octets, as last measured
    uint8_t m_tag = 0;
};
