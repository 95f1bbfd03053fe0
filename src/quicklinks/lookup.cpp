#include "quicklinks/lookup.h"

#include "formats/text/pathpart.h"

#include <functional>

namespace {

constexpr uint32_t end = UINT32_MAX; // of a chain

size_t keyof(std::string_view file, uint32_t profile)
{
    return std::hash<std::string_view>()(file) ^ profile * size_t{0x9E3779B97F4A7C15};
}

uint32_t ownlink(size_t position)
{
    return static_cast<uint32_t>(2 * position);
}

} // namespace

size_t QLLookup::first(const std::vector<QLRecord>& records, std::string_view file,
                       uint32_t profile)
{
    follow(records);
    const auto found = m_chains.find(keyof(file, profile));
    if (found == m_chains.end())
        return none;
    for (uint32_t link = found->second.first; link != end; link = m_next[link]) {
        const QLRecord& record = records[link / 2];
        if ((profile == anyprofile || profile == record.profile) &&
            fileNamePart(record.manifest) == file)
            return link / 2;
    }
    return none;
}

void QLLookup::widen(const std::vector<QLRecord>& records, size_t position)
{
    const QLRecord& record = records[position];
    if (record.profile == anyprofile)
        return;
    // Anywhere else in its chain it is passed over for its new profile.
    chain_t& chain = m_chains.at(keyof(fileNamePart(record.manifest), record.profile));
    if (chain.first == ownlink(position))
        chain.first = m_next[chain.first];
}

void QLLookup::clear() noexcept
{
    m_chains.clear();
    m_next.clear();
    m_followed = 0;
}

void QLLookup::append(uint32_t link, size_t key)
{
    const auto [found, fresh] = m_chains.try_emplace(key, chain_t{link, link});
    chain_t& chain = found->second;
    if (fresh || chain.last == link) // the latter after memory ran out half-way
        return;
    (chain.first == end ? chain.first : m_next[chain.last]) = link;
    chain.last = link;
}

void QLLookup::follow(const std::vector<QLRecord>& records)
{
    if (records.size() < m_followed)
        clear();
    m_next.resize(2 * records.size(), end);
    for (; m_followed < records.size(); ++m_followed) {
        const QLRecord& record = records[m_followed];
        const std::string_view file = fileNamePart(record.manifest);
        const uint32_t own = ownlink(m_followed);
        if (record.profile != anyprofile)
            append(own, keyof(file, record.profile));
        append(own + 1, keyof(file, anyprofile));
    }
}
