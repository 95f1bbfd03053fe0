#include "quicklinks/lookup.h"

#include "formats/text/pathpart.h"

#include <algorithm>

namespace {

std::string keyof(std::string_view file, uint32_t profile)
{
    std::string key(file);
    for (int shift = 0; shift < 32; shift += 8)
        key.push_back(static_cast<char>(profile >> shift));
    return key;
}

} // namespace

size_t QLLookup::first(const std::vector<QLRecord>& records, std::string_view file,
                       uint32_t profile)
{
    follow(records);
    const auto found = m_positions.find(keyof(file, profile));
    return found == m_positions.end() || found->second.empty() ? none : found->second.front();
}

void QLLookup::widen(const std::vector<QLRecord>& records, size_t position)
{
    const QLRecord& record = records[position];
    if (record.profile == anyprofile)
        return;
    auto& positions = m_positions[keyof(fileNamePart(record.manifest), record.profile)];
    const auto [first, last] = std::equal_range(positions.begin(), positions.end(), position);
    positions.erase(first, last);
}

void QLLookup::clear() noexcept
{
    m_positions.clear();
    m_followed = 0;
}

void QLLookup::follow(const std::vector<QLRecord>& records)
{
    if (records.size() < m_followed)
        clear();
    for (; m_followed < records.size(); ++m_followed) {
        const QLRecord& record = records[m_followed];
        const std::string_view file = fileNamePart(record.manifest);
        m_positions[keyof(file, anyprofile)].push_back(m_followed);
        if (record.profile != anyprofile)
            m_positions[keyof(file, record.profile)].push_back(m_followed);
    }
}
