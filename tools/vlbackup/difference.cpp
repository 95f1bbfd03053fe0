#include "difference.h"

#include "shared/backupinput.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

namespace {

constexpr char encodedDifferently[] = "encoded differently";
constexpr char onlyInTheFirst[] = "only in the first";
constexpr char inAnotherOrder[] = "in another order";

// Item is one item of an element: its name, and what is compared.
struct Item {
    std::string name;
    std::vector<std::pair<const char*, std::string>> fields;
    std::span<const uint8_t> content; // of a file, compared without a copy
};
using Items = std::vector<Item>;

Items filesOf(const CBackupView& backup)
{
    Items out;
    for (const BackupFile& file : backup.files)
        out.push_back({file.name, {}, file.content});
    return out;
}

Items linksOf(const CBackupView& backup)
{
    Items out;
    for (const BackupLink& link : backup.links) {
        out.push_back({link.name,
                       {{"target", link.target},
                        {"manifest", link.manifest},
                        {"profile", std::to_string(link.profile)},
                        {"manifestid", link.manifestid},
                        {"wocred", link.wocred ? "1" : "0"}},
                       {}});
    }
    return out;
}

Items categoriesOf(const CBackupView& backup)
{
    Items out;
    for (const BackupCategory& category : backup.categories)
        out.push_back({category.name, {{"text", category.text}}, {}});
    return out;
}

// Each member that holds no others, by its path.
void addMembers(const Json::Value& value, const std::string& path, Items& out)
{
    if (!value.isObject() || value.empty()) {
        out.push_back({path, {{"value", jsonText(value, false)}}, {}});
        return;
    }
    const std::string prefix = path.empty() ? path : path + '.';
    for (const std::string& name : value.getMemberNames())
        addMembers(value[name], prefix + name, out);
}

Items settingsOf(const CBackupView& backup)
{
    const BackupSettings& settings = backup.settings;
    Items out;
    if (settings.form == SettingsForm::legacy) {
        out.push_back({"training prompt", {{"value", settings.showPrompt ? "show" : "hide"}}, {}});
        out.push_back({"hot key", {{"value", settings.hotKey}}, {}});
        out.push_back({"do-not-prompt list", {}, settings.dontPromptList});
    } else if (settings.form == SettingsForm::document) {
        if (const auto document = parseDocument(settings.document))
            addMembers(*document, {}, out);
        else
            out.push_back({"document", {{"text", settings.document}}, {}});
    }
    return out;
}

class CComparison
{
public:
    explicit CComparison(std::vector<BackupDifference>& found) : m_found(found) {}

    void Compare(const char* element, const Items& first, const Items& second)
    {
        // Of second, by name and how often it came.
        std::map<std::pair<std::string_view, size_t>, size_t> places;
        std::map<std::string_view, size_t> seen;
        for (size_t i = 0; i < second.size(); ++i)
            places[{second[i].name, seen[second[i].name]++}] = i;
        seen.clear();
        bool inOrder = true;
        size_t last = 0;
        for (const Item& mine : first) {
            const auto place = places.find({mine.name, seen[mine.name]++});
            if (place == places.end()) {
                m_found.push_back({element, mine.name, onlyInTheFirst});
                continue;
            }
            inOrder = inOrder && place->second >= last;
            last = place->second;
            CompareItem(element, mine, second[place->second]);
            places.erase(place);
        }
        for (const auto& [name, index] : places)
            m_found.push_back({element, second[index].name, "only in the second"});
        if (!inOrder)
            m_found.push_back({element, {}, inAnotherOrder});
    }

private:
    void CompareItem(const char* element, const Item& mine, const Item& other)
    {
        for (size_t i = 0; i < mine.fields.size() && i < other.fields.size(); ++i) {
            if (mine.fields[i].second == other.fields[i].second)
                continue;
            m_found.push_back({element, mine.name,
                               std::string(mine.fields[i].first) + ": \"" + mine.fields[i].second +
                                   "\" and \"" + other.fields[i].second + "\""});
        }
        if (!std::equal(mine.content.begin(), mine.content.end(), other.content.begin(),
                        other.content.end())) {
            m_found.push_back({element, mine.name,
                               "content: " + std::to_string(mine.content.size()) + " and " +
                                   std::to_string(other.content.size()) + " bytes that differ"});
        }
    }

    std::vector<BackupDifference>& m_found;
};

} // namespace

std::vector<BackupDifference> compareBackups(const CBackupView& first, const CBackupView& second)
{
    std::vector<BackupDifference> found;
    if (first.elementCount != second.elementCount) {
        found.push_back({"backup",
                         {},
                         "elements: " + std::to_string(first.elementCount) + " and " +
                             std::to_string(second.elementCount)});
    }
    if (first.settings.form != second.settings.form)
        found.push_back({"settings", {}, "in another form"});
    CComparison both(found);
    both.Compare("templates", filesOf(first), filesOf(second));
    both.Compare("quicklinks", linksOf(first), linksOf(second));
    both.Compare("categories", categoriesOf(first), categoriesOf(second));
    both.Compare("settings", settingsOf(first), settingsOf(second));
    // The same for a reader, but maybe not the same bytes.
    constexpr std::array names = {"templates", "quicklinks", "categories", "settings"};
    const auto reported = [&](size_t element) {
        return std::any_of(found.begin(), found.end(), [&](const BackupDifference& difference) {
            return element < names.size() && difference.element == names.at(element);
        });
    };
    for (size_t i = 0; i < std::min(first.elements.size(), second.elements.size()); ++i) {
        const auto& mine = first.elements[i];
        const auto& other = second.elements[i];
        if (!reported(i) && !std::equal(mine.begin(), mine.end(), other.begin(), other.end()))
            found.push_back({"backup", "element " + std::to_string(i), encodedDifferently});
    }
    if (found.empty() && first.size != second.size)
        found.push_back({"backup", {}, encodedDifferently});
    return found;
}

std::string reasonAfterRestore(const BackupDifference& difference)
{
    if (difference.what == inAnotherOrder)
        return "files and registry values come in the order in which the system finds them";
    if (difference.element == "settings" &&
        difference.item == "settings.current.path_dontpromptlist_filename" &&
        difference.what == onlyInTheFirst)
        return "the do-not-prompt list of a document is not written back";
    if (difference.item == "element 1" && difference.what == encodedDifferently)
        return "a number above 0x7FFFFFFF loses leading FF octets on its way";
    return {};
}
