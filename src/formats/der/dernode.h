#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// CDerArena is the memory of a DER tree's nodes and of what they copy. It all goes with the arena:
// a tree of many small elements takes a few large blocks.
class CDerArena
{
public:
    CDerArena() noexcept = default;
    CDerArena(const CDerArena&) = delete;
    CDerArena& operator=(const CDerArena&) = delete;

    // Take gives uninitialised bytes, aligned for a node. Errors: std::bad_alloc
    void* Take(size_t size);

    // Keep holds an object until Release. Errors: std::bad_alloc
    uint32_t Keep(std::shared_ptr<const void> object);
    void Release(uint32_t kept) noexcept { m_kept[kept].reset(); }

private:
    void* TakeBlock(size_t size);

    alignas(std::max_align_t) std::array<std::byte, 128> m_first; // enough for a lone element
    std::byte* m_free = m_first.data();
    size_t m_left = m_first.size();
    size_t m_nextBlock = 1024;
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::vector<std::shared_ptr<const void>> m_kept;
};

// CDerNode is one element of a DER tree (X.690) that is to be written: nothing yet, a leaf, or a
// sequence of nodes. The tree is measured in one pass and written in another, into a buffer of
// exactly that size. It belongs to a CDerTree. Portable.
//
// An empty node adds no bytes at all: later elements of its sequence move one place forward.
//
// Errors: a setter raises std::bad_alloc and leaves the node as it was
class CDerNode
{
public:
    CDerNode(const CDerNode&) = delete;
    CDerNode& operator=(const CDerNode&) = delete;

    bool IsEmpty() const noexcept { return m_kind == Kind::empty; }

    void SetSequence(size_t count); // count empty children; without any it encodes as 30 00
    // Child gives one of a sequence's children.
    CDerNode& Child(size_t index) noexcept { return m_children[index]; }
    size_t Count() const noexcept; // children; 0 for anything but a sequence

    // SetOctets borrows the bytes: they must stay until the tree is written. keepAlive, if given,
    // is held until then.
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
    // each node's part of it for Write. Write then stores exactly that many bytes, gives their end
    // and lets go of what the nodes keep alive as it passes them: a tree is written once. A change
    // needs a new Measure.
    size_t Measure() noexcept;
    uint8_t* Write(uint8_t* out) const noexcept;

    // Encode is Measure and Write into a buffer of its own. Errors: std::bad_alloc.
    std::vector<uint8_t> Encode();

protected:
    explicit CDerNode(CDerArena& arena) noexcept : m_arena(&arena) {}

private:
    enum class Kind : uint8_t { empty, leaf, keptLeaf, encoded, sequence };

    uint8_t* SetCopy(uint8_t tag, size_t size); // gives the content octets, to be filled
    template <class Char> void SetBmpString(std::basic_string_view<Char> text);

    CDerArena* m_arena;
    union {
        const uint8_t* m_bytes = nullptr;
        CDerNode* m_children;
    };
    size_t m_size = 0; // content octets; of a sequence, as last measured; of an encoded one, all
    union {
        uint32_t m_count = 0; // children
        uint32_t m_kept;      // by the arena
    };
    Kind m_kind = Kind::empty;
    uint8_t m_tag = 0;
};

// CDerTree is the root of a tree, with its memory.
class CDerTree : private CDerArena, public CDerNode
{
public:
    CDerTree() noexcept : CDerNode(static_cast<CDerArena&>(*this)) {}
};
