#include "stringtable.h"

#include <algorithm>
#include <functional>

namespace vltrace {

namespace {

constexpr size_t pieceSize = 1 << 16;

} // namespace

std::string_view stringTable_t::keep(std::string_view text)
{
    if (m_pieces.empty() || m_pieces.back().capacity() - m_pieces.back().size() < text.size())
        m_pieces.emplace_back().reserve(std::max(pieceSize, text.size()));
    std::vector<char>& piece = m_pieces.back(); // never moves: it is full before it would grow
    piece.insert(piece.end(), text.begin(), text.end());
    return {piece.data() + piece.size() - text.size(), text.size()};
}

uint32_t stringTable_t::numberOf(std::string_view text)
{
    const std::hash<std::string_view> hash;
    const uint32_t number = m_index.numberOf(
        hash(text), [&](uint32_t known) { return m_texts[known] == text; },
        [&](uint32_t known) { return hash(m_texts[known]); });
    if (number == m_texts.size())
        m_texts.push_back(keep(text));
    return number;
}

} // namespace vltrace
