#include "copyholdings.h"

#include <algorithm>

namespace {

bool hasCategory(const dashboardState_t& state, const registryValue_t& wanted)
{
    return state.categories &&
           std::ranges::find(*state.categories, wanted) != state.categories->end();
}

} // namespace

CCopyHoldings::CCopyHoldings(const std::vector<safetyCopy_t>& copies) : m_files(copies.size())
{
    for (size_t place = 0; place < copies.size(); ++place) {
        m_copies.push_back(&copies[place]);
        for (const auto& file : copies[place].files)
            if (file.copy)
                m_files[place].emplace(fileKey(file.path), &file);
    }
}

bool CCopyHoldings::HoldsFile(size_t place, const copiedFile_t& file) const
{
    const auto found = m_files[place].find(fileKey(file.path));
    return found != m_files[place].end() && fileEquals(*found->second->copy, *file.copy);
}

bool CCopyHoldings::AnotherHolds(size_t place, const registryValue_t& category) const
{
    return std::ranges::any_of(m_copies, [&](const safetyCopy_t* other) {
        return other && other != m_copies[place] && hasCategory(other->dashboard, category);
    });
}

bool CCopyHoldings::IsElsewhere(size_t place) const
{
    const safetyCopy_t& copy = *m_copies[place];
    for (const auto& file : copy.files) {
        if (!file.copy || file.state.size == 0 || fileEquals(file.path, *file.copy))
            continue; // an empty one holds nothing
        bool found = false;
        for (size_t other = 0; other < m_copies.size() && !found; ++other)
            found = other != place && HoldsFile(other, file);
        if (!found)
            return false;
    }
    const dashboardState_t now = readDashboard();
    for (const auto& category : copy.dashboard.categories.value_or(std::vector<registryValue_t>()))
        if (!hasCategory(now, category) && !AnotherHolds(place, category))
            return false;
    return true;
}

void CCopyHoldings::Drop(size_t place)
{
    m_copies[place] = nullptr;
    m_files[place].clear();
}
