#include "formats/backup/backupview.h"

#include "formats/backup/backupjudge.h"
#include "formats/backup/formcheck.h"
#include "formats/backup/storednames.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"

#include <algorithm>

std::u16string BackupFile::Key() const
{
    // Paths and names are never equal: a name has no separator.
    const std::u16string key = alien ? pathKey(target) : nameKey(target);
    return alien && key.empty() ? caseKey(name) : key; // one that isn't full leads nowhere known
}

std::u16string BackupCategory::Key() const
{
    return caseKey(name);
}

BackupFile CBackupFiles::operator[](size_t index) const
{
    const Stored& stored = m_files[index];
    CDerSequenceView pair;
    (void)pair.Decode(m_backup.subspan(stored.offset)); // it was one when it was added
    const StoredFile file = decodeFile(pair);
    return {utf8FromUtf16(file.name),
            file.content,
            utf8FromUtf16(file.target),
            file.marked,
            stored.place,
            stored.offset};
}

bool CBackupView::Decode(std::span<const uint8_t> backup)
{
    *this = CBackupView(std::move(m_sink));
    m_backup = backup;
    CDerReader reader(backup);
    std::span<const uint8_t> outer;
    CDerSequenceView top;
    if (!reader.ReadElement(outer) || !top.Decode(outer))
        return Refuse(damageOf(backup));
    size = outer.size();
    elementCount = top.Count();
    const BackupVersion version = versionOf(elementCount);
    if (!version.restorable)
        return Refuse({Grade::error, "backup",
                       countText(elementCount, "element") + " where a restore wants at least 2"});
    if (size < backup.size())
        Find({Grade::note,
              "backup",
              countText(backup.size() - size, "byte") + " after its end, which a restore ignores",
              {.offset = size}});
    elements.reserve(elementCount);
    for (const CDerElement& element : top)
        elements.push_back(element.Encoded());
    oldLinks = version.linkTexts == TextForm::octets;
    if (elementCount != 4)
        Find({Grade::note, "backup", backupVersionText(elementCount)});
    DecodeFiles(top[0]);
    DecodeLinks(top[1], version.linkTexts);
    if (version.categories)
        DecodeCategories(top[2]);
    if (version.settings)
        DecodeSettings(top[3]);
    judgeContents(*this, Sink());
    return true;
}

BackupFinding::Grade CBackupView::Verdict() const noexcept
{
    if (!refusal.empty() || FindingCount(Grade::error) != 0)
        return Grade::error;
    return FindingCount(Grade::warning) != 0 ? Grade::warning : Grade::note;
}

std::vector<BackupFile> CBackupView::MarkedOutside(std::span<const std::string> folders) const
{
    std::vector<std::u16string> keys;
    for (const std::string& folder : folders)
        keys.push_back(pathKey(folder));
    std::vector<BackupFile> outside;
    for (const BackupFile& file : files) {
        const std::u16string key = pathKey(file.target);
        if (file.alien && std::none_of(keys.begin(), keys.end(), [&](const std::u16string& folder) {
                return isBelow(key, folder);
            }))
            outside.push_back(file);
    }
    return outside;
}

void CBackupView::Find(BackupFinding finding)
{
    ++m_counts[static_cast<size_t>(finding.grade)];
    if (m_sink)
        m_sink(std::move(finding));
    else
        findings.push_back(std::move(finding));
}

FindingSink CBackupView::Sink()
{
    return [this](BackupFinding finding) { Find(std::move(finding)); };
}

bool CBackupView::Refuse(const BackupFinding& why)
{
    refusal = why.what;
    refusedAt = why.place;
    return false;
}

CFormCheck CBackupView::Check(size_t position, const char* name)
{
    return {Sink(), m_backup, position, name};
}

size_t CBackupView::OffsetOf(const CDerElement& element) const noexcept
{
    return static_cast<size_t>(element.Encoded().data() - m_backup.data());
}

void CBackupView::DecodeFiles(const CDerElement& element)
{
    CFormCheck check = Check(0, "templates");
    CDerSequenceView list;
    CDerSequenceView pair;
    check.List(element, list);
    files = CBackupFiles(m_backup, list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        if (check.Entry(list, i, pair) && check.File(pair))
            files.Add(OffsetOf(list[i]), i);
    }
}

void CBackupView::DecodeLinks(const CDerElement& element, TextForm form)
{
    CFormCheck check = Check(1, "quicklinks");
    CDerSequenceView list;
    CDerSequenceView record;
    check.List(element, list);
    links.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        if (!check.Entry(list, i, record))
            continue;
        check.Link(record, form);
        BackupLink link;
        if (!decodeLink(record, form, link))
            continue;
        link.place = i;
        link.offset = OffsetOf(list[i]);
        links.push_back(std::move(link));
    }
}

void CBackupView::DecodeCategories(const CDerElement& element)
{
    CFormCheck check = Check(2, "categories");
    CDerSequenceView list;
    CDerSequenceView pair;
    check.List(element, list);
    categories.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        if (check.Entry(list, i, pair))
            check.Category(pair);
        const StoredCategory stored = decodeCategory(pair);
        categories.push_back(
            {utf8FromUtf16(stored.name), utf8FromUtf16(stored.text), OffsetOf(list[i])});
    }
}

void CBackupView::DecodeSettings(const CDerElement& element)
{
    CFormCheck check = Check(3, "settings");
    CDerSequenceView items;
    check.List(element, items);
    check.Settings(items);
    settings.offset = OffsetOf(element);
    settings.form = settingsFormOf(items.Count());
    if (settings.form == SettingsForm::document)
        settings.document = items[0].NarrowText();
    if (settings.form != SettingsForm::legacy)
        return;
    const LegacySettings legacy = decodeLegacySettings(items);
    settings.showPrompt = legacy.showPrompt;
    settings.hotKey = utf8FromUtf16(legacy.hotKey);
    settings.dontPromptList = legacy.dontPromptList;
}

std::string backupVersionText(size_t elementCount)
{
    const std::string count = countText(elementCount, "element") + ": ";
    switch (elementCount) {
    case 0:
    case 1:
        return count + "a restore refuses it";
    case 2:
        return count + "an early version; templates and quick links with narrow texts are restored";
    case 3:
        return count + "an earlier version; templates, quick links and categories are restored";
    case 4:
        return count +
               "the current version; templates, quick links, categories and settings are restored";
    default:
        return count + "an unknown version; templates, quick links and categories are restored, "
                       "the rest is left alone";
    }
}
