#include "formats/backup/backupjudge.h"

#include "formats/backup/storednames.h"
#include "formats/text/pathpart.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

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

// Names that a restore takes for the same file. It keeps the last.
class CNames
{
public:
    // Returns: the place of an earlier one, or place itself
    size_t Add(std::u16string key, size_t place)
    {
        return m_places.try_emplace(std::move(key), place).first->second;
    }

    bool Has(const std::u16string& key) const { return m_places.contains(key); }

private:
    std::unordered_map<std::u16string, size_t> m_places;
};

class CJudge
{
public:
    explicit CJudge(std::vector<BackupFinding>& findings) : m_findings(findings) {}

    void File(const BackupFile& file)
    {
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
        // Paths and names are never equal: a name has no separator.
        std::u16string key = file.alien ? pathKey(file.target) : nameKey(file.target);
        const size_t other = m_files.Add(std::move(key), file.place);
        if (other != file.place)
            Find(Grade::error, "is the same file as " + placeText(templates, other) +
                                   ", and a restore keeps one");
    }

    void Link(const BackupLink& link)
    {
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
        const size_t other =
            m_links.Add(utf16FromUtf8(std::to_string(link.profile) + '|' + manifest), link.place);
        if (other != link.place && !manifest.empty())
            Find(Grade::error, "has the template and profile of " + placeText(quicklinks, other) +
                                   ", and a restore keeps one");
    }

    void Category(const BackupCategory& category, size_t place)
    {
        Enter(categories, place, category.name);
        Text("the name", category.name);
        const size_t other = m_categories.Add(caseKey(category.name), place);
        if (other != place)
            Find(Grade::error, "is the same category as " + placeText(categories, other) +
                                   ", and a restore keeps one");
    }

private:
    void Enter(const char* element, size_t place, const std::string& name)
    {
        m_where = placeText(element, place);
        m_name = &name;
    }

    void Find(Grade grade, const std::string& what)
    {
        m_findings.push_back({grade, m_where, '"' + *m_name + "\" " + what});
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

    std::vector<BackupFinding>& m_findings;
    std::string m_where;
    const std::string* m_name = nullptr;
    CNames m_files;
    CNames m_links;
    CNames m_categories;
};

} // namespace

void judgeContents(const CBackupView& backup, std::vector<BackupFinding>& findings)
{
    CJudge judge(findings);
    for (const BackupFile& file : backup.files)
        judge.File(file);
    for (const BackupLink& link : backup.links)
        judge.Link(link);
    for (size_t i = 0; i < backup.categories.size(); ++i)
        judge.Category(backup.categories[i], i);
}
