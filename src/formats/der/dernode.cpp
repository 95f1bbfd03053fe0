#include "formats/der/dernode.h"

#include "formats/der/derheader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

namespace {

constexpr size_t largestBlock = 0x100000;

} // namespace

void* CDerArena::Take(size_t size)
{
    constexpr size_t unit = alignof(CDerNode);
    if (size > std::numeric_limits<size_t>::max() - unit)
        throw std::bad_alloc();
    size = (size + unit - 1) / unit * unit;
    if (size > m_left)
        return TakeBlock(size);
    void* const taken = m_free;
    m_free += size;
    m_left -= size;
    return taken;
}

void* CDerArena::TakeBlock(size_t size)
{
    const size_t blockSize = std::max(size, m_nextBlock);
    m_blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(blockSize));
    std::byte* const block = m_blocks.back().get();
    m_nextBlock = std::min(2 * m_nextBlock, largestBlock);
    if (blockSize - size > m_left) { // else what is left of the last one is of more use
        m_free = block + size;
        m_left = blockSize - size;
    }
    return block;
}

uint32_t CDerArena::Keep(std::shared_ptr<const void> object)
{
    m_kept.push_back(std::move(object));
    return static_cast<uint32_t>(m_kept.size() - 1);
}

void CDerNode::SetSequence(size_t count)
{
    static_assert(std::is_trivially_destructible_v<CDerNode>); // the arena destroys none
    if (count > std::numeric_limits<uint32_t>::max())
        throw std::bad_alloc();
    auto* const children = static_cast<CDerNode*>(m_arena->Take(count * sizeof(CDerNode)));
    for (size_t i = 0; i < count; ++i)
        new (children + i) CDerNode(*m_arena);
    m_children = children;
    m_count = static_cast<uint32_t>(count);
    m_kind = Kind::sequence;
    m_tag = derTag::sequence;
}

size_t CDerNode::Count() const noexcept
{
    return m_kind == Kind::sequence ? m_count : 0;
}

void CDerNode::SetOctets(std::span<const uint8_t> bytes, std::shared_ptr<const void> keepAlive)
{
    const bool isKept = keepAlive != nullptr;
    if (isKept)
        m_kept = m_arena->Keep(std::move(keepAlive));
    m_kind = isKept ? Kind::keptLeaf : Kind::leaf;
    m_bytes = bytes.data();
    m_size = bytes.size();
    m_tag = derTag::octetString;
}

uint8_t* CDerNode::SetCopy(uint8_t tag, size_t size)
{
    auto* const octets = static_cast<uint8_t*>(m_arena->Take(size));
    m_bytes = octets;
    m_size = size;
    m_kind = Kind::leaf;
    m_tag = tag;
    return octets;
}

template <class Char> void CDerNode::SetBmpString(std::basic_string_view<Char> text)
{
    static_assert(sizeof(Char) == 2);
    text = text.substr(0, text.find(Char{}));
    uint8_t* out = SetCopy(derTag::bmpString, 2 * (text.size() + 1));
    for (const Char unit : text) {
        *out++ = static_cast<uint8_t>(static_cast<uint16_t>(unit) >> 8);
        *out++ = static_cast<uint8_t>(unit);
    }
    out[0] = out[1] = 0;
}

void CDerNode::SetWide(std::u16string_view text)
{
    SetBmpString(text);
}

#ifdef _WIN32
void CDerNode::SetWide(std::wstring_view text)
{
    SetBmpString(text);
}
#endif

void CDerNode::SetNarrow(std::string_view text)
{
    text = text.substr(0, text.find('\0'));
    *std::copy(text.begin(), text.end(), SetCopy(derTag::octetString, text.size() + 1)) = 0;
}

void CDerNode::SetUnits(std::span<const uint8_t> units)
{
    const size_t size = units.size() - units.size() % 2;
    uint8_t* const out = SetCopy(derTag::bmpString, size);
    for (size_t i = 0; i < size; i += 2) {
        out[i] = units[i + 1];
        out[i + 1] = units[i];
    }
}

void CDerNode::SetNumber(std::span<const uint8_t> bytes)
{
    size_t size = bytes.size();
    while (size > 1 && derRepeatsSign(bytes[size - 1], bytes[size - 2]))
        --size;
    uint8_t* const out = SetCopy(derTag::integer, std::max<size_t>(size, 1));
    out[0] = 0; // a number of no bytes takes one octet, too
    std::reverse_copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size), out);
}

void CDerNode::SetInteger(uint32_t value)
{
    const uint8_t bytes[] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
                             static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
    SetNumber(bytes);
}

void CDerNode::SetEncoded(std::span<const uint8_t> element) noexcept
{
    m_kind = Kind::encoded;
    m_bytes = element.data();
    m_size = element.size();
}

size_t CDerNode::Measure() noexcept
{
    switch (m_kind) {
    case Kind::empty:
        return 0;
    case Kind::encoded:
        return m_size;
    case Kind::sequence:
        m_size = 0;
        for (CDerNode& child : std::span(m_children, m_count))
            m_size += child.Measure();
        break;
    case Kind::leaf:
    case Kind::keptLeaf:
        break;
    }
    return derHeaderSize(m_size) + m_size;
}

uint8_t* CDerNode::Write(uint8_t* out) const noexcept
{
    if (m_kind == Kind::empty)
        return out;
    if (m_kind != Kind::encoded)
        out = derWriteHeader(out, m_tag, m_size);
    if (m_kind == Kind::sequence) {
        for (const CDerNode& child : std::span(m_children, m_count))
            out = child.Write(out);
        return out;
    }
    out = std::copy_n(m_bytes, m_size, out);
    if (m_kind == Kind::keptLeaf)
        m_arena->Release(m_kept);
    return out;
}

std::vector<uint8_t> CDerNode::Encode()
{
    std::vector<uint8_t> bytes(Measure());
    Write(bytes.data());
    return bytes;
}
