#include "formats/backup/backupview.h"

#include "formats/backup/backupjudge.h"
#include "formats/backup/storedmark.h"
#include "formats/backup/storednames.h"
#include "formats/der/derheader.h"
#include "formats/der/derreader.h"
#include "formats/text/pathpart.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <string_view>

namespace {

std::string countText(size_t count, const char* thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

// brokenText says where bytes stop being one sequence of elements.
std::string brokenText(std::span<const uint8_t> backup)
{
    CDerReader outer(backup);
    std::span<const uint8_t> contents;
    if (backup.empty())
        return "empty";
    if (backup[0] != derTag::sequence || outer.Announced() == 0)
        return "not a sequence of elements";
    if (outer.Announced() > backup.size())
        return "cut at byte " + std::to_string(backup.size()) + " of " +
               std::to_string(outer.Announced());
    size_t at = outer.Announced();
    if (outer.Read(derTag::sequence, contents)) {
        at -= contents.size();
        CDerReader reader(contents);
        for (std::span<const uint8_t> element; reader.ReadElement(element);)
            at += element.size();
    }
    return "the element at byte " + std::to_string(at) + " is damaged";
}

bool hasMoreBehindZero(std::u16string_view units)
{
    const size_t zero = std::min(units.find(u'\0'), units.size());
    return units.find_first_not_of(u'\0', zero) != std::u16string_view::npos;
}

} // namespace

bool CBackupView::Decode(std::span<const uint8_t> backup)
{
    *this = {};
    CDerReader reader(backup);
    std::span<const uint8_t> outer;
    CDerSequenceView top;
    if (!reader.ReadElement(outer) || !top.Decode(outer)) {
        Find(Grade::error, "backup", brokenText(backup));
        return false;
    }
    size = outer.size();
    if (size < backup.size())
        Find(Grade::note, "backup",
             countText(backup.size() - size, "byte") + " behind its end, which a restore ignores");
    elementCount = top.Count();
    if (elementCount < 2) {
        Find(Grade::error, "backup",
             countText(elementCount, "element") + " where a restore wants at least 2");
        return false;
    }
    for (const CDerElement& element : top)
        elements.push_back(element.Encoded());
    oldLinks = elementCount == 2;
    if (elementCount != 4)
        Find(Grade::note, "backup", backupVersionText(elementCount));
    DecodeFiles(top[0]);
    DecodeLinks(top[1]);
    if (elementCount >= 3)
        DecodeCategories(top[2]);
    if (elementCount == 4) // with 5 or more a restore leaves the settings as they are
        DecodeSettings(top[3]);
    judgeContents(*this, findings);
    return true;
}

BackupFinding::Grade CBackupView::Verdict() const noexcept
{
    Grade verdict = Grade::note;
    for (const BackupFinding& finding : findings)
        verdict = std::max(verdict, finding.grade);
    return verdict;
}

std::vector<const BackupFile*>
CBackupView::MarkedOutside(std::span<const std::string> folders) const
{
    std::vector<std::u16string> keys;
    for (const std::string& folder : folders)
        keys.push_back(pathKey(folder));
    std::vector<const BackupFile*> outside;
    for (const BackupFile& file : files) {
        const std::u16string key = pathKey(file.target);
        if (file.alien && std::none_of(keys.begin(), keys.end(), [&](const std::u16string& folder) {
                return isBelow(key, folder);
            }))
            outside.push_back(&file);
    }
    return outside;
}

void CBackupView::Find(Grade grade, std::string where, std::string what)
{
    findings.push_back({grade, std::move(where), std::move(what)});
}

bool CBackupView::Sequence(const CDerElement& element, const std::string& where,
                           CDerSequenceView& items)
{
    items = {};
    if (items.Decode(element))
        return true;
    Find(Grade::error, where, "not a sequence");
    return false;
}

std::string CBackupView::Wide(const CDerElement& element, const std::string& where)
{
    std::u16string units;
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    if (!element.DecodeWide(units))
        Find(Grade::error, where, "not a wide text; a restore takes its encoded bytes for one");
    else if (!CDerReader(element.Encoded()).ReadAny(tag, contents) || tag != derTag::bmpString)
        Find(Grade::note, where, "a text of another kind than exports write");
    else if (hasMoreBehindZero(units) || contents.size() % 2 != 0)
        Find(Grade::error, where, "a text with more than a restore takes of it");
    else if (units.empty() || units.find(u'\0') != units.size() - 1)
        Find(Grade::warning, where, "a text that doesn't end with its one terminating zero");
    return utf8FromUtf16(element.WideText());
}

std::string CBackupView::Narrow(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    const std::string_view text = element.NarrowText();
    if (!element.DecodeOctets(contents))
        Find(Grade::error, where, "not a narrow text; a restore takes its encoded bytes for one");
    else if (std::any_of(contents.begin() + static_cast<std::ptrdiff_t>(text.size()),
                         contents.end(), [](uint8_t octet) { return octet != 0; }))
        Find(Grade::error, where, "a text with more than a restore takes of it");
    else if (text.size() + 1 != contents.size())
        Find(Grade::warning, where, "a text that doesn't end with its one terminating zero");
    return std::string(text);
}

uint32_t CBackupView::Integer(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    if (!element.DecodeInteger(contents))
        Find(Grade::error, where, "not an integer; a restore reads 0");
    else if (contents.empty() || contents.size() > 4)
        Find(Grade::error, where,
             "an integer of " + countText(contents.size(), "byte") + "; a restore reads 0");
    return element.Integer();
}

void CBackupView::DecodeFiles(const CDerElement& element)
{
    CDerSequenceView list;
    CDerSequenceView pair;
    Sequence(element, "templates", list);
    files.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        const std::string where = placeText("templates", i);
        if (!Sequence(list[i], where, pair))
            continue;
        if (pair.Count() != 2)
            Find(Grade::error, where, countText(pair.Count(), "element") + " in a pair");
        BackupFile file;
        file.name = Wide(pair[0], where + " name");
        std::span<const uint8_t> contents;
        if (pair.Count() > 1 && !pair[1].DecodeOctets(contents))
            Find(Grade::error, where,
                 "its content isn't an octet string; a restore writes the encoded bytes");
        file.content = pair[1].Octets();
        if (file.name.empty()) {
            Find(Grade::error, where, "no name; a restore writes no file");
            continue;
        }
        file.alien = file.name.starts_with(storedMark<char>);
        file.target = file.alien ? file.name.substr(storedMark<char>.size())
                                 : std::string(fileNamePart(file.name));
        file.place = i;
        files.push_back(std::move(file));
    }
}

void CBackupView::DecodeLinks(const CDerElement& element)
{
    CDerSequenceView list;
    CDerSequenceView record;
    Sequence(element, "quicklinks", list);
    links.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        const std::string where = placeText("quicklinks", i);
        if (!Sequence(list[i], where, record))
            continue;
        if (record.Count() != 5 && record.Count() != 6) {
            Find(Grade::error, where,
                 countText(record.Count(), "element") + "; a restore drops the record");
            continue;
        }
        const auto text = [&](size_t index, const char* field) {
            return oldLinks ? Narrow(record[index], where + field)
                            : Wide(record[index], where + field);
        };
        BackupLink link;
        link.name = text(0, " name");
        link.target = text(1, " target");
        link.manifest = text(2, " manifest");
        link.profile = Integer(record[3], where + " profile");
        link.manifestid = text(4, " manifestid");
        if (record.Count() == 6) {
            const uint32_t wocred = Integer(record[5], where + " wocred");
            link.wocred = wocred == 1;
            if (wocred > 1)
                Find(Grade::error, where, "wocred is neither 0 nor 1; a restore reads 0");
        } else if (!oldLinks) {
            Find(Grade::note, where, "no wocred, as in an earlier version; a restore reads 0");
        }
        link.place = i;
        links.push_back(std::move(link));
    }
}

void CBackupView::DecodeCategories(const CDerElement& element)
{
    CDerSequenceView list;
    CDerSequenceView pair;
    Sequence(element, "categories", list);
    categories.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        const std::string where = placeText("categories", i);
        if (Sequence(list[i], where, pair) && pair.Count() != 2)
            Find(Grade::error, where, countText(pair.Count(), "element") + " in a pair");
        BackupCategory category; // a missing item is an empty text, as in a restore
        if (pair.Count() > 0)
            category.name = Wide(pair[0], where + " name");
        if (pair.Count() > 1)
            category.text = Wide(pair[1], where + " text");
        categories.push_back(std::move(category));
    }
}

void CBackupView::DecodeSettings(const CDerElement& element)
{
    CDerSequenceView list;
    Sequence(element, "settings", list);
    if (list.Count() == 1) {
        settings.form = SettingsForm::document;
        settings.document = Narrow(list[0], "settings document");
        if (settings.document.empty())
            Find(Grade::error, "settings",
                 "an empty document; a restore leaves the settings as they are");
    } else if (list.Count() > 1) {
        settings.form = SettingsForm::legacy;
        settings.showPrompt = Integer(list[0], "settings prompt") == 1;
        settings.hotKey = Wide(list[1], "settings hot key");
        if (list.Count() == 3)
            settings.dontPromptList = list[2].Encoded();
        Find(Grade::note, "settings",
             countText(list.Count(), "element") + " without a document, as in an earlier version");
    } else {
        settings.form = SettingsForm::unsupported;
        Find(Grade::error, "settings", "no elements; a restore leaves the settings as they are");
    }
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
