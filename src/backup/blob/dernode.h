#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// CDerNode is one element of a DER tree that is to be written: nothing yet, a leaf, or a sequence of nodes. The
// tree is measured once and written once into a buffer of exactly that size. Portable: no platform header.
//
// An empty node adds no bytes at all, so that later elements of its sequence move one place forward.
class CDerNode
{
public:
    bool IsEmpty() const noexcept;

    void SetSequence(size_t count);    // count empty children; an empty sequence encodes as 30 00
    CDerNode& Child(size_t index);
    size_t Count() const noexcept;

    // SetOctets borrows the bytes: they must stay until the tree is written. keepAlive, if given, is held so long.
    void SetOctets(std::span<const uint8_t> bytes, std::shared_ptr<const void> keepAlive = {});
    void SetWide(std::u16string_view text);  // BMPString with the terminating zero added; copies
    void SetNarrow(std::string_view text);   // OCTET STRING with the terminating zero added; copies
    void SetInteger(uint32_t value);         // the four bytes as one signed number, in shortest form

    // Encode gives the bytes of the whole tree; empty for an empty node. Errors: std::bad_alloc.
    std::vector<uint8_t> Encode() const;

private:
    enum class Kind { Empty, Leaf, Sequence };
    Kind m_kind = Kind::Empty;
    uint8_t m_tag = 0;
    std::vector<uint8_t> m_owned;
    std::span<const uint8_t> m_view;
    std::shared_ptr<const void> m_keepAlive;
    std::vector<CDerNode> m_children;
};
