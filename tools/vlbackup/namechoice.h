#pragma once

#include <string>
#include <vector>

// CNameChoice is what the names on a command line choose. In a name * stands for any characters, \ and / included, and ?
// for one; letters of either case are the same, and so are \ and /, as they are to the file system.
class CNameChoice
{
public:
    explicit CNameChoice(const std::vector<std::string>& names);

    // All is true if there are no names: then everything is chosen.
    bool All() const noexcept { return m_patterns.empty(); }
    bool Has(const std::string& name);
    // Unmet gives the names that have chosen nothing so far.
    std::vector<std::string> Unmet() const;

private:
    struct Pattern {
        std::string given;
        std::u16string key;
        bool met;
    };
    std::vector<Pattern> m_patterns;
};
