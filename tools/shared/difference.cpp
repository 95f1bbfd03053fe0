#include "shared/difference.h"

#include "shared/backupinput.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

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

// Side is one element of one backup. Its items are made when they are asked for: there may be hundreds of thousands.
struct Side {
    size_t count = 0;
    std::function<std::string(size_t)> name;
    std::function<Item(size_t)> item;
};

Side filesOf(const CBackupView& backup)
{
    return {backup.files.size(), [&](size_t i) { return backup.files[i].name; },
            [&](size_t i) {
                BackupFile file = backup.files[i];
                return Item{std::move(file.name), {}, file.content};
            }};
}

Side linksOf(const CBackupView& backup)
{
    return {backup.links.size(), [&](size_t i) { return backup.links[i].name; },
            [&](size_t i) {
                const BackupLink& link = backup.links[i];
                return Item{link.name,
                            {{"target", link.target},
                             {"manifest", link.manifest},
                             {"profile", std::to_string(link.profile)},
                             {"manifestid", link.manifestid},
                             {"wocred", link.wocred ? "1" : "0"}},
                            {}};
            }};
}

Side categoriesOf(const CBackupView& backup)
{
    return {backup.categories.size(), [&](size_t i) { return backup.categories[i].name; },
            [&](size_t i) {
                const BackupCategory& category = backup.categories[i];
                return Item{category.name, {{"text", category.text}}, {}};
            }};
}

// Each member that holds no others, by its path.
void addMembers(const Json::Value& value, const std::string& path, std::vector<Item>& out)
{
    if (!value.isObject() || value.empty()) {
        out.push_back({path, {{"value", jsonText(value, false)}}, {}});
        return;
    }
    const std::string prefix = path.empty() ? path : path + '.';
    for (const std::string& name : value.getMemberNames())
        addMembers(value[name], prefix + name, out);
}

Side settingsOf(const CBackupView& backup)
{
    const BackupSettings& settings = backup.settings;
    std::vector<Item> items;
    if (settings.form == SettingsForm::legacy) {
        items.push_back(
            {"training prompt", {{"value", settings.showPrompt ? "show" : "hide"}}, {}});
        items.push_back({"hot key", {{"value", settings.hotKey}}, {}});
        items.push_back({"do-not-prompt list", {}, settings.dontPromptList});
    } else if (settings.form == SettingsForm::document) {
        if (const auto document = parseDocument(settings.document))
            addMembers(*document, {}, items);
        else
            items.push_back({"document", {{"text", settings.document}}, {}});
    }
    const auto kept = std::make_shared<const std::vector<Item>>(std::move(items));
    return {kept->size(), [kept](size_t i) { return (*kept)[i].name; },
            [kept](size_t i) { return (*kept)[i]; }};
}

constexpr uint32_t alone = UINT32_MAX;

// CMatch finds the item of the second side that has the name of one of the first.
class CMatch
{
public:
    CMatch(const Side& first, const Side& second) : partner(first.count, alone), met(second.count)
    {
        std::vector<Key> mine = KeysOf(first);
        std::vector<Key> others = KeysOf(second);
        for (auto m = mine.begin(), o = others.begin(); m != mine.end() && o != others.end();) {
            if (m->hash != o->hash) {
                ++(m->hash < o->hash ? m : o);
                continue;
            }
            const auto another = [hash = m->hash](const Key& key) { return key.hash != hash; };
            const auto mineEnd = std::find_if(m, mine.end(), another);
            const auto othersEnd = std::find_if(o, others.end(), another);
            Pair(first, {m, mineEnd}, second, {o, othersEnd});
            m = mineEnd;
            o = othersEnd;
        }
    }

    std::vector<uint32_t> partner; // of each of the first; alone for none
    std::vector<bool> met;         // which of the second are one

private:
    struct Key {
        uint32_t hash;
        uint32_t index;
    };

    static std::vector<Key> KeysOf(const Side& side)
    {
        if (side.count >= alone)
            throw std::bad_alloc(); // a hundred gigabytes of items
        std::vector<Key> keys(side.count);
        for (uint32_t i = 0; i < keys.size(); ++i)
            keys[i] = {static_cast<uint32_t>(std::hash<std::string>()(side.name(i))), i};
        std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
            return std::pair(a.hash, a.index) < std::pair(b.hash, b.index);
        });
        return keys;
    }

    // Pair matches keys of one hash: nearly always all have one name.
    void Pair(const Side& first, std::span<Key> mine, const Side& second, std::span<Key> others)
    {
        SortByName(first, mine);
        SortByName(second, others);
        for (auto m = mine.begin(), o = others.begin(); m != mine.end() && o != others.end();) {
            const int order = first.name(m->index).compare(second.name(o->index));
            if (order == 0) {
                partner[m->index] = o->index;
                met[o->index] = true;
            }
            m += order <= 0;
            o += order >= 0;
        }
    }

    static void SortByName(const Side& side, std::span<Key> keys)
    {
        const std::string name = side.name(keys[0].index);
        if (std::any_of(keys.begin() + 1, keys.end(),
                        [&](const Key& key) { return side.name(key.index) != name; }))
            std::stable_sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) {
                return side.name(a.index) < side.name(b.index);
            });
    }
};

void compareItems(const char* element, const Item& mine, const Item& other,
                  const DifferenceSink& sink)
{
    for (size_t i = 0; i < mine.fields.size() && i < other.fields.size(); ++i) {
        if (mine.fields[i].second == other.fields[i].second)
            continue;
        sink({element, mine.name,
              std::string(mine.fields[i].first) + ": \"" + mine.fields[i].second + "\" and \"" +
                  other.fields[i].second + "\""});
    }
    if (!std::equal(mine.content.begin(), mine.content.end(), other.content.begin(),
                    other.content.end())) {
        sink({element, mine.name,
              "content: " + std::to_string(mine.content.size()) + " and " +
                  std::to_string(other.content.size()) + " bytes that differ"});
    }
}

void compareSides(const char* element, const Side& first, const Side& second,
                  const DifferenceSink& sink)
{
    const CMatch match(first, second);
    bool inOrder = true;
    size_t last = 0;
    for (size_t i = 0; i < first.count; ++i) {
        const size_t place = match.partner[i];
        if (place == alone) {
            sink({element, first.name(i), onlyInTheFirst});
            continue;
        }
        inOrder = inOrder && place >= last;
        last = place;
        compareItems(element, first.item(i), second.item(place), sink);
    }
    for (size_t i = 0; i < second.count; ++i)
        if (!match.met[i])
            sink({element, second.name(i), "only in the second"});
    if (!inOrder)
        sink({element, {}, inAnotherOrder});
}

} // namespace

void compareBackups(const CBackupView& first, const CBackupView& second, const DifferenceSink& sink)
{
    constexpr std::array names = {"templates", "quicklinks", "categories", "settings"};
    std::array<bool, names.size()> reported{};
    bool any = false;
    const DifferenceSink report = [&](BackupDifference difference) {
        any = true;
        for (size_t i = 0; i < names.size(); ++i)
            reported.at(i) = reported.at(i) || difference.element == names.at(i);
        sink(std::move(difference));
    };
    if (first.elementCount != second.elementCount) {
        report({"backup",
                {},
                "elements: " + std::to_string(first.elementCount) + " and " +
                    std::to_string(second.elementCount)});
    }
    if (first.settings.form != second.settings.form)
        report({"settings", {}, "in another form"});
    compareSides(names[0], filesOf(first), filesOf(second), report);
    compareSides(names[1], linksOf(first), linksOf(second), report);
    compareSides(names[2], categoriesOf(first), categoriesOf(second), report);
    compareSides(names[3], settingsOf(first), settingsOf(second), report);
    // The same for a reader, but maybe not the same bytes.
    for (size_t i = 0; i < std::min(first.elements.size(), second.elements.size()); ++i) {
        const auto& mine = first.elements[i];
        const auto& other = second.elements[i];
        if ((i >= names.size() || !reported.at(i)) &&
            !std::equal(mine.begin(), mine.end(), other.begin(), other.end()))
            report({"backup", "element " + std::to_string(i), encodedDifferently});
    }
    if (!any && first.size != second.size)
        report({"backup", {}, encodedDifferently});
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
