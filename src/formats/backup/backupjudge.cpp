#include "formats/backup/backupjudge.h"

#include "formats/backup/storednames.h"
#include "formats/text/pathpart.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <vector>

namespace {

using Grade = BackupFinding::Grade;

constexpr char templates[] = "templates";
constexpr char quicklinks[] = "quicklinks";
constexpr char categories[] = "categories";
constexpr size_t longestPath = 259; // in UTF-16 units, unless the host takes longer ones

bool steers(const std::string& text)
{
    for (std::string_view rest = text; !rest.empty();)
        if (isSteering(takeCharacter(rest)))
            return true;
    return false;
}

// CNames holds entries by names that a restore takes for the same, in an open hash table of 8 bytes for each entry and 8 for
// its free places. It makes a key again when two hashes are equal, as the names of a backup may take as much memory as the
// backup.
class CNames
{
public:
    using KeyOf = std::function<std::u16string(size_t entry)>;

    CNames(size_t count, KeyOf keyOf)
        : m_keyOf(std::move(keyOf)), m_slots(std::bit_ceil(count + count / 2 + 1))
    {}

    // Returns: an earlier entry of the same name, or entry itself
    size_t Add(size_t entry, const std::u16string& key)
    {
        Slot& slot = m_slots[PlaceOf(key)];
        if (slot.entry == 0)
            slot = {HashOf(key), static_cast<uint32_t>(entry + 1)};
        return slot.entry - 1;
    }

    bool Has(const std::u16string& key) const { return m_slots[PlaceOf(key)].entry != 0; }

private:
    struct Slot {
        uint32_t hash = 0;
        uint32_t entry =
            0; // and one more: 0 is free. A backup's size has 32 bits, so an entry's number has
    };

    static uint32_t HashOf(const std::u16string& key)
    {
        return static_cast<uint32_t>(std::hash<std::u16string>()(key));
    }

    // The slot of that key, or a free one.
    size_t PlaceOf(const std::u16string& key) const
    {
        const uint32_t hash = HashOf(key);
        size_t place = hash & (m_slots.size() - 1);
        while (m_slots[place].entry != 0 &&
               (m_slots[place].hash != hash || m_keyOf(m_slots[place].entry - 1) != key))
            place = (place + 1) & (m_slots.size() - 1);
        return place;
    }

    KeyOf m_keyOf;
    std::vector<Slot> m_slots;
};

class CJudge
{
public:
    CJudge(const CBackupView& backup, const FindingSink& sink)
        : m_backup(backup),
          m_sink(sink),
          m_files(backup.files.size(), [&backup](size_t i) { return backup.files[i].Key(); }),
          m_links(backup.links.size(), [&backup](size_t i) { return backup.links[i].Key(); }),
          m_categories(backup.categories.size(),
                       [&backup](size_t i) { return backup.categories[i].Key(); })
    {}

    void File(size_t entry)
    {
        const BackupFile file = m_backup.files[entry];
        Enter(0, {.entry = file.place, .offset = file.offset}, file.name);
        Text("the name", file.name);
        if (file.alien)
            MarkedPath(file.target);
        else if (file.target != file.name)
            Find(Grade::error, "holds a path, which a restore drops");
        else
            Part(file.name);
        Extension(std::string(fileNamePart(file.target)), file.alien);
        if (file.content.empty() && !isDataFile(file.name))
            Find(Grade::warning, "is empty, and a restore empties the file");
        if (const size_t other = m_files.Add(entry, file.Key()); other != entry)
            Find(Grade::error, "is the same file as " +
                                   placeText(templates, m_backup.files[other].place) +
                                   ", and a restore keeps one");
    }

    void Link(size_t entry)
    {
        const BackupLink& link = m_backup.links[entry];
        Enter(1, {.entry = link.place, .offset = link.offset}, link.name);
        const std::pair<const char*, const std::string&> texts[] = {{"the name", link.name},
                                                                    {"the target", link.target},
                                                                    {"the manifest", link.manifest},
                                                                    {"the id", link.manifestid}};
        for (const auto& [what, text] : texts) {
            if (text.find_first_of("\r\n") != std::string::npos)
                Find(Grade::error,
                     std::string("has a line end in ") + what + ", which its file can't hold");
            else
                Text(what, text);
        }
        if (link.name.empty() || link.target.empty())
            Find(Grade::error, "has no name or no target; a restore drops it");
        const std::string manifest(fileNamePart(link.manifest));
        if (manifest.empty())
            Find(Grade::error, "names no template; a restore drops it");
        else if (manifest != link.manifest)
            Find(Grade::error, "names a template with a path: " + link.manifest);
        else if (!m_files.Has(nameKey(manifest)))
            Find(Grade::warning, "is lost at the next change of the quick links, as " + manifest +
                                     " is no template of the personal folder");
        if (const char* const warning = targetWarning(link.target))
            Find(Grade::warning, warning + (": " + link.target));
        const size_t other = m_links.Add(entry, link.Key());
        if (other != entry && !manifest.empty())
            Find(Grade::error, "has the template and profile of " +
                                   placeText(quicklinks, m_backup.links[other].place) +
                                   ", and a restore keeps one");
    }

    void Category(size_t entry)
    {
        const BackupCategory& category = m_backup.categories[entry];
        Enter(2, {.entry = entry, .offset = category.offset}, category.name);
        Text("the name", category.name);
        if (const size_t other = m_categories.Add(entry, category.Key()); other != entry)
            Find(Grade::error, "is the same category as " + placeText(categories, other) +
                                   ", and a restore keeps one");
    }

private:
    void Enter(size_t element, BackupPlace place, const std::string& name)
    {
        m_place = place;
        m_place.element = element;
        m_name = name;
    }

    void Find(Grade grade, const std::string& what)
    {
        constexpr const char* elements[] = {templates, quicklinks, categories};
        m_sink({grade, placeText(elements[m_place.element], m_place.entry),
                '"' + m_name + "\" " + what, m_place});
    }

    void Text(const char* what, const std::string& text)
    {
        if (steers(text))
            Find(Grade::warning,
                 std::string("hides control characters or direction marks in ") + what);
    }

    void Part(const std::string& part)
    {
        if (const char* const fault = nameFault(part))
            Find(Grade::error, fault);
    }

    void MarkedPath(const std::string& path)
    {
        const std::u16string key = pathKey(path);
        if (key.empty()) {
            Find(Grade::error, "is no full path on a drive or a network share");
            return;
        }
        const bool network = key[0] == u'\\';
        const bool device = path.starts_with("\\\\?\\") || path.starts_with("\\\\.\\") ||
                            path.starts_with("\\??\\");
        if (device)
            Find(Grade::warning, "has a prefix that lets the system take the path as it stands");
        else if (path.size() > longestPath && utf16FromUtf8(path).size() > longestPath)
            Find(Grade::warning, "is longer than most hosts can write");
        if (network)
            Find(Grade::warning, "goes to a network share");
        else if (isGuardedPlace(key))
            Find(Grade::warning, "goes into a folder of the system, of programs or of a user");
        // The drive, or what stands for it, is not one of the parts.
        for (size_t begin = network || device ? 4 : 3; begin <= path.size();) {
            const size_t end = std::min(path.find_first_of("\\/", begin), path.size());
            const std::string part = path.substr(begin, end - begin);
            begin = end + 1;
            if (part == "..")
                Find(Grade::error, "climbs out of a folder");
            else if (part != "." && !(device && part.size() == 2 && part[1] == ':'))
                Part(part);
        }
    }

    void Extension(const std::string& name, bool alien)
    {
        const std::u16string key = nameKey(name);
        const size_t dot = std::min(key.rfind(u'.'), key.size());
        const std::u16string_view extension = std::u16string_view(key).substr(dot);
        if (extension == u".vlm" || (!alien && extension == u".vls"))
            return;
        if (extension.starts_with(u".vlm")) // an export finds it too where files have short names
            Find(Grade::warning, "is no template by its name");
        else
            Find(Grade::error, "is no template");
    }

    const CBackupView& m_backup;
    const FindingSink& m_sink;
    BackupPlace m_place; // of the entry that is judged
    std::string m_name;
    CNames m_files;
    CNames m_links;
    CNames m_categories;
};

} // namespace

void judgeContents(const CBackupView& backup, const FindingSink& sink)
{
    CJudge judge(backup, sink);
    for (size_t i = 0; i < backup.files.size(); ++i)
        judge.File(i);
    for (size_t i = 0; i < backup.links.size(); ++i)
        judge.Link(i);
    for (size_t i = 0; i < backup.categories.size(); ++i)
        judge.Category(i);
}
