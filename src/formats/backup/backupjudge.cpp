#include "formats/backup/backupjudge.h"

#include "formats/backup/storednames.h"
#include "formats/text/pathpart.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

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

// CNames holds entries by names that a restore takes for the same. It reads a name again whenever
// one is compared, as the names of a backup may take as much memory as the backup.
class CNames
{
public:
    using KeyOf = std::function<std::u16string(size_t entry)>;

    explicit CNames(KeyOf keyOf)
        : m_keyOf(std::move(keyOf)), m_entries(0, Hash{m_keyOf}, Equal{m_keyOf})
    {}
    CNames(const CNames&) = delete;
    CNames& operator=(const CNames&) = delete;

    // Returns: an earlier entry of the same name, or entry itself
    size_t Add(size_t entry) { return *m_entries.insert(entry).first; }

    bool Has(const std::u16string& key) const { return m_entries.contains(key); }

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(const std::u16string& key) const
        {
            return std::hash<std::u16string>()(key);
        }
        size_t operator()(size_t entry) const { return (*this)(keyOf(entry)); }
        const KeyOf& keyOf;
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const std::u16string& key, size_t entry) const
        {
            return key == keyOf(entry);
        }
        bool operator()(size_t one, size_t other) const
        {
            return one == other || keyOf(one) == keyOf(other);
        }
        const KeyOf& keyOf;
    };

    KeyOf m_keyOf;
    std::unordered_set<size_t, Hash, Equal> m_entries;
};

class CJudge
{
public:
    CJudge(const CBackupView& backup, const FindingSink& sink)
        : m_backup(backup),
          m_sink(sink),
          m_files([&backup](size_t i) { return backup.files[i].Key(); }),
          m_links([&backup](size_t i) {
              const BackupLink& link = backup.links[i];
              return utf16FromUtf8(std::to_string(link.profile) + '|')
                  .append(utf16FromUtf8(fileNamePart(link.manifest)));
          }),
          m_categories([&backup](size_t i) { return caseKey(backup.categories[i].name); })
    {}

    void File(size_t entry)
    {
        const BackupFile file = m_backup.files[entry];
        Enter(templates, file.place, file.name);
        Text("the name", file.name);
        if (file.alien)
            MarkedPath(file.target);
        else if (file.target != file.name)
            Find(Grade::error, "holds a path, which a restore drops");
        else
            Part(file.name);
        Extension(std::string(fileNamePart(file.target)), file.alien);
        // A data file that isn't on the disk is stored as an empty one.
        const bool data = file.name == "updata.vls" || file.name == "updata_temp.vls";
        if (file.content.empty() && !data)
            Find(Grade::warning, "is empty, and a restore empties the file");
        if (const size_t other = m_files.Add(entry); other != entry)
            Find(Grade::error, "is the same file as " +
                                   placeText(templates, m_backup.files[other].place) +
                                   ", and a restore keeps one");
    }

    void Link(size_t entry)
    {
        const BackupLink& link = m_backup.links[entry];
        Enter(quicklinks, link.place, link.name);
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
        const size_t other = m_links.Add(entry);
        if (other != entry && !manifest.empty())
            Find(Grade::error, "has the template and profile of " +
                                   placeText(quicklinks, m_backup.links[other].place) +
                                   ", and a restore keeps one");
    }

    void Category(size_t entry)
    {
        const BackupCategory& category = m_backup.categories[entry];
        Enter(categories, entry, category.name);
        Text("the name", category.name);
        if (const size_t other = m_categories.Add(entry); other != entry)
            Find(Grade::error, "is the same category as " + placeText(categories, other) +
                                   ", and a restore keeps one");
    }

private:
    void Enter(const char* element, size_t place, const std::string& name)
    {
        m_where = placeText(element, place);
        m_name = name;
    }

    void Find(Grade grade, const std::string& what)
    {
        m_sink({grade, m_where, '"' + m_name + "\" " + what});
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
    std::string m_where;
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
