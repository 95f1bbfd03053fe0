#include "quicklinks/lookup.h"

#include <algorithm>

namespace {

std::string keyof(std::string_view file, uint32_t profile)
{
    std::string key(file);
    for (int shift = 0; shift < 32; shift += 8)
        key.push_back(static_cast<char>(profile >> shift));
    return key;
}

bool matches(const QLRecord& record, std::string_view file, uint32_t profile) noexcept
{
    return (profile == QLLookup::anyprofile || record.profile == profile) &&
           qlfilepart(record.manifest) == file;
}

} // namespace

size_t QLLookup::first(const std::vector<QLRecord>& records, std::string_view file,
                       uint32_t profile)
{
    follow(records);
    const auto found = m_positions.find(keyof(file, profile));
    if (found == m_positions.end())
        return none;
    // A record that got another profile is still listed under its old one: drop it when it turns
    // up.
    auto& positions = found->second;
    const auto match = std::find_if(positions.begin(), positions.end(), [&](size_t position) {
        return matches(records[position], file, profile);
    });
    positions.erase(positions.begin(), match);
    return positions.empty() ? none : positions.front();
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
        const std::string_view file = qlfilepart(record.manifest);
        m_positions[keyof(file, anyprofile)].push_back(m_followed);
        if (record.profile != anyprofile)
            m_positions[keyof(file, record.profile)].push_back(m_followed);
    }
}

std::string_view qlfilepart(std::string_view path) noexcept
{
    const size_t separator = path.find_last_of("\\/:");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}
