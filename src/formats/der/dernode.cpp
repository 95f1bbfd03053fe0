#include "formats/der/dernode.h"

#include "formats/der/derheader.h"

#include <algorithm>

namespace {

template <class Char> std::vector<uint8_t> bmpString(std::basic_string_view<Char> text)
{
    static_assert(sizeof(Char) == 2);
    text = text.substr(0, text.find(Char{}));
    std::vector<uint8_t> octets(2 * (text.size() + 1)); // the last two stay 0
    auto out = octets.begin();
    for (const Char unit : text) {
        *out++ = static_cast<uint8_t>(static_cast<uint16_t>(unit) >> 8);
        *out++ = static_cast<uint8_t>(unit);
    }
    return octets;
}

} // namespace

void CDerNode::SetSequence(size_t count)
{
    m_content = Children(count);
    m_tag = derTag::sequence;
}

size_t CDerNode::Count() const noexcept
{
    const auto* children = std::get_if<Children>(&m_content);
    return children ? children->size() : 0;
}

void CDerNode::SetOctets(std::span<const uint8_t> bytes, std::shared_ptr<const void> keepAlive)
{
    m_content = Borrowed{bytes, std::move(keepAlive)};
    m_tag = derTag::octetString;
}

void CDerNode::SetWide(std::u16string_view text)
{
    m_content = bmpString(text);
    m_tag = derTag::bmpString;
}

#ifdef _WIN32
void CDerNode::SetWide(std::wstring_view text)
{
    m_content = bmpString(text);
    m_tag = derTag::bmpString;
}
#endif

void CDerNode::SetNarrow(std::string_view text)
{
    text = text.substr(0, text.find('\0'));
    Owned octets(text.size() + 1);
    std::copy(text.begin(), text.end(), octets.begin());
    m_content = std::move(octets);
    m_tag = derTag::octetString;
}

void CDerNode::SetUnits(std::span<const uint8_t> units)
{
    Owned octets(units.begin(), units.end() - static_cast<std::ptrdiff_t>(units.size() % 2));
    for (size_t i = 0; i < octets.size(); i += 2)
        std::swap(octets[i], octets[i + 1]);
    m_content = std::move(octets);
    m_tag = derTag::bmpString;
}

void CDerNode::SetNumber(std::span<const uint8_t> bytes)
{
    size_t size = bytes.size();
    while (size > 1 && derRepeatsSign(bytes[size - 1], bytes[size - 2]))
        --size;
    Owned octets(std::max<size_t>(size, 1)); // a number of no bytes takes one octet, too
    std::reverse_copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size),
                      octets.begin());
    m_content = std::move(octets);
    m_tag = derTag::integer;
}

void CDerNode::SetInteger(uint32_t value)
{
    const uint8_t bytes[] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
                             static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
    SetNumber(bytes);
}

void CDerNode::SetEncoded(std::span<const uint8_t> element) noexcept
{
    m_content = Encoded{element};
}

size_t CDerNode::Measure() noexcept
{
    if (IsEmpty())
        return 0;
    if (const auto* encoded = std::get_if<Encoded>(&m_content))
        return encoded->element.size();
    if (auto* children = std::get_if<Children>(&m_content)) {
        m_size = 0;
        for (CDerNode& child : *children)
            m_size += child.Measure();
    } else if (const auto* owned = std::get_if<Owned>(&m_content)) {
        m_size = owned->size();
    } else if (const auto* borrowed = std::get_if<Borrowed>(&m_content)) {
        m_size = borrowed->bytes.size();
    }
    return derHeaderSize(m_size) + m_size;
}

uint8_t* CDerNode::Write(uint8_t* out) const noexcept
{
    if (IsEmpty())
        return out;
    if (const auto* encoded = std::get_if<Encoded>(&m_content))
        return std::copy(encoded->element.begin(), encoded->element.end(), out);
    out = derWriteHeader(out, m_tag, m_size);
    if (const auto* children = std::get_if<Children>(&m_content)) {
        for (const CDerNode& child : *children)
            out = child.Write(out);
    } else if (const auto* owned = std::get_if<Owned>(&m_content)) {
        out = std::copy(owned->begin(), owned->end(), out);
    } else if (const auto* borrowed = std::get_if<Borrowed>(&m_content)) {
        out = std::copy(borrowed->bytes.begin(), borrowed->bytes.end(), out);
    }
    return out;
}

std::vector<uint8_t> CDerNode::Encode()
{
    std::vector<uint8_t> bytes(Measure());
    Write(bytes.data());
    return bytes;
}
