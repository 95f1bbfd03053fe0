#include "formats/backup/elementtree.h"

#include "formats/backup/records.h"
#include "formats/der/derheader.h"
#include "formats/der/derreader.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

using Kind = ElementKind;

constexpr size_t deepest = 3;

// A list of kinds by position, and the one of all further positions.
template <size_t Count> struct Kinds {
    std::array<Kind, Count> kinds;
    Kind further = Kind::other;

    constexpr Kind operator[](size_t position) const noexcept
    {
        return position < Count ? kinds.at(position) : further;
    }
};
constexpr Kinds<4> elements{{Kind::templates, Kind::quicklinks, Kind::categories, Kind::settings},
                            Kind::unknown};
constexpr Kinds<2> fileItems{{Kind::name, Kind::content}};
constexpr Kinds<6> linkItems{
    {Kind::name, Kind::target, Kind::manifest, Kind::profile, Kind::manifestId, Kind::wocred}};
constexpr Kinds<2> categoryItems{{Kind::name, Kind::text}};
constexpr Kinds<1> documentItems{{Kind::document}};
constexpr Kinds<3> legacyItems{{Kind::prompt, Kind::hotKey, Kind::dontPromptList}};

// countElements counts what can be read of a sequence's content.
size_t countElements(std::span<const uint8_t> content)
{
    size_t count = 0;
    std::span<const uint8_t> element;
    for (CDerReader reader(content); reader.ReadElement(element);)
        ++count;
    return count;
}

// kindWithin gives the kind of the element at a position in another one.
// count: of the elements in that, for the kinds that depend on it
Kind kindWithin(const BackupElement& outer, size_t count, size_t position)
{
    switch (outer.kind) {
    case Kind::backup:
        // Of five or more elements, a restore leaves the settings alone, too. A cut backup may have had any number.
        if (position == 3 && outer.whole && !versionOf(count).settings)
            return Kind::unknown;
        return elements[position];
    case Kind::templates:
        return Kind::storedFile;
    case Kind::quicklinks:
        return Kind::link;
    case Kind::categories:
        return Kind::category;
    case Kind::settings:
        return settingsFormOf(count) == SettingsForm::legacy ? legacyItems[position]
                                                             : documentItems[position];
    case Kind::storedFile:
        return fileItems[position];
    case Kind::link:
        return linkItems[position];
    case Kind::category:
        return categoryItems[position];
    default:
        return Kind::other;
    }
}

bool holdsOthers(Kind kind)
{
    return kind <= Kind::category || kind == Kind::other;
}

class CWalk
{
public:
    CWalk(std::span<const uint8_t> backup, const std::function<void(const BackupElement&)>& visit)
        : m_backup(backup), m_visit(visit)
    {}

    // Visit takes one element off the front of bytes, which are not empty; what can't be read is one, too.
    void Visit(std::span<const uint8_t>& bytes, BackupElement element)
    {
        element.place.offset = static_cast<size_t>(bytes.data() - m_backup.data());
        element.tag = bytes[0];
        if (!CDerReader(bytes).Header(element.header, element.length) ||
            (element.depth == 0 && element.tag != derTag::sequence)) {
            Rest(bytes, element, Kind::damage);
            return;
        }
        const std::span<const uint8_t> rest = bytes.subspan(element.header);
        element.content = rest.first(std::min(rest.size(), element.length));
        element.whole = element.content.size() == element.length;
        bytes = rest.subspan(element.content.size());
        element.inner =
            element.tag == derTag::sequence && element.depth < deepest && holdsOthers(element.kind);
        m_visit(element);
        if (element.inner)
            Descend(element);
    }

    void Rest(std::span<const uint8_t>& bytes, BackupElement element, Kind kind)
    {
        element.place.offset = static_cast<size_t>(bytes.data() - m_backup.data());
        element.kind = kind;
        element.header = 0;
        element.length = bytes.size();
        element.content = bytes;
        element.tag = bytes[0];
        element.whole = kind == Kind::after;
        bytes = {};
        m_visit(element);
    }

private:
    void Descend(const BackupElement& outer)
    {
        std::span<const uint8_t> bytes = outer.content;
        const bool counts = outer.kind == Kind::backup || outer.kind == Kind::settings;
        const size_t count = counts ? countElements(bytes) : 0;
        for (size_t position = 0; !bytes.empty(); ++position) {
            BackupElement next;
            next.place = outer.place;
            (outer.depth == 0   ? next.place.element
             : outer.depth == 1 ? next.place.entry
                                : next.place.item) = position;
            next.depth = outer.depth + 1;
            next.kind = kindWithin(outer, count, position);
            Visit(bytes, next);
        }
    }

    std::span<const uint8_t> m_backup;
    const std::function<void(const BackupElement&)>& m_visit;
};

} // namespace

const char* kindName(ElementKind kind)
{
    static constexpr const char* names[] = {
        "backup",       "templates",  "quick links",
        "categories",   "settings",   "unknown element",
        "stored file",  "quick link", "category",
        "name",         "content",    "target",
        "manifest",     "profile",    "manifest id",
        "wocred",       "text",       "document",
        "prompt",       "hot key",    "do-not-prompt list",
        "unknown item", "damaged",    "after the end",
    };
    static_assert(std::size(names) == static_cast<size_t>(ElementKind::after) + 1);
    return names[static_cast<size_t>(kind)];
}

void walkElements(std::span<const uint8_t> backup,
                  const std::function<void(const BackupElement&)>& visit)
{
    if (backup.empty())
        return;
    CWalk walk(backup, visit);
    std::span<const uint8_t> rest = backup;
    walk.Visit(rest, {});
    if (!rest.empty())
        walk.Rest(rest, {}, ElementKind::after);
}
