#include "namechoice.h"

#include "formats/backup/storednames.h"

#include <algorithm>
#include <string_view>

namespace {

std::u16string keyOf(const std::string& name)
{
    std::u16string key = caseKey(name);
    std::ranges::replace(key, u'/', u'\\');
    return key;
}

// fits goes back to the last * alone: an earlier one could only give up what this one can take.
bool fits(std::u16string_view name, std::u16string_view pattern)
{
    size_t at = 0;
    size_t star = std::u16string_view::npos; // what follows the last one
    size_t taken = 0;                        // the end of what that one stands for
    for (size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == u'*') {
            star = ++at;
            taken = i;
        } else if (at < pattern.size() && (pattern[at] == u'?' || pattern[at] == name[i])) {
            ++at;
            ++i;
        } else if (star != std::u16string_view::npos) {
            at = star;
            i = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', at) == std::u16string_view::npos;
}

} // namespace

CNameChoice::CNameChoice(const std::vector<std::string>& names)
{
    for (const std::string& name : names)
        m_patterns.push_back({name, keyOf(name), false});
}

bool CNameChoice::Has(const std::string& name)
{
    bool has = All();
    const std::u16string key = has ? std::u16string() : keyOf(name);
    for (Pattern& pattern : m_patterns)
        if (fits(key, pattern.key))
            has = pattern.met = true;
    return has;
}

std::vector<std::string> CNameChoice::Unmet() const
{
    std::vector<std::string> unmet;
    for (const Pattern& pattern : m_patterns)
        if (!pattern.met)
            unmet.push_back(pattern.given);
    return unmet;
}
