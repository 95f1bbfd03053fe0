#include "backup/blob/backupview.h"

#include "backup/blob/derheader.h"
#include "backup/blob/derreader.h"
#include "backup/blob/unicode.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

std::string at(const char* element, size_t index)
{
    return std::string(element) + "[" + std::to_string(index) + "]";
}

std::string countText(size_t count, const char* thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string lower(std::string text)
{
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

bool isDrivePath(std::string_view path)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return path.size() > 3 && isLetter(path[0]) && path[1] == ':' &&
           (path[2] == '\\' || path[2] == '/');
}

bool climbs(std::string_view path)
{
    for (size_t begin = 0; begin <= path.size();) {
        const size_t end = std::min(path.find_first_of("\\/", begin), path.size());
        if (path.substr(begin, end - begin) == "..")
            return true;
        begin = end + 1;
    }
    return false;
}

bool isDevice(const std::string& fileName)
{
    const std::string base = lower(fileName.substr(0, fileName.find('.')));
    static constexpr std::array<std::string_view, 6> names{"con", "prn",    "aux",
                                                           "nul", "conin$", "conout$"};
    if (std::find(names.begin(), names.end(), base) != names.end())
        return true;
    return base.size() == 4 && (base.starts_with("com") || base.starts_with("lpt")) &&
           base[3] >= '0' && base[3] <= '9';
}

// The part behind the last separator: what a restore keeps of a name for the personal folder.
std::string lastPart(const std::string& path)
{
    const size_t separator = path.find_last_of("\\/:");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

} // namespace

bool CBackupView::Decode(std::span<const uint8_t> backup)
{
    *this = {};
    CDerReader reader(backup);
    std::span<const uint8_t> outer;
    CDerSequenceView top;
    if (!reader.ReadElement(outer) || !top.Decode(outer)) {
        Find(Kind::malformed, "backup", "not a well-formed sequence of elements");
        return false;
    }
    size = outer.size();
    if (size < backup.size())
        Find(Kind::note, "backup",
             countText(backup.size() - size, "byte") + " behind its end, which a restore ignores");
    elementCount = top.Count();
    if (elementCount < 2) {
        Find(Kind::malformed, "backup",
             countText(elementCount, "element") + " where a restore wants at least 2");
        return false;
    }
    for (const CDerElement& element : top)
        elements.push_back(element.Encoded());
    oldLinks = elementCount == 2;
    if (elementCount != 4)
        Find(Kind::note, "backup", backupVersionText(elementCount));
    DecodeFiles(top[0]);
    DecodeLinks(top[1]);
    if (elementCount >= 3)
        DecodeCategories(top[2]);
    if (elementCount == 4) // with 5 or more a restore leaves the settings as they are
        DecodeSettings(top[3]);
    return true;
}

bool CBackupView::Sound() const noexcept
{
    return std::all_of(findings.begin(), findings.end(),
                       [](const auto& f) { return f.kind == Kind::note; });
}

void CBackupView::Find(Kind kind, std::string where, std::string what)
{
    findings.push_back({kind, std::move(where), std::move(what)});
}

bool CBackupView::Sequence(const CDerElement& element, const std::string& where,
                           CDerSequenceView& items)
{
    items = {};
    if (items.Decode(element))
        return true;
    Find(Kind::malformed, where, "not a sequence");
    return false;
}

std::string CBackupView::Wide(const CDerElement& element, const std::string& where)
{
    std::u16string units;
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    if (!element.DecodeWide(units))
        Find(Kind::malformed, where, "not a wide text; a restore takes its encoded bytes for one");
    else if (!CDerReader(element.Encoded()).ReadAny(tag, contents) || tag != derTag::bmpString)
        Find(Kind::note, where, "a text of another kind than exports write");
    else if (units.empty() || units.find(u'\0') != units.size() - 1 || contents.size() % 2 != 0)
        Find(Kind::malformed, where, "a text that doesn't end with its one terminating zero");
    return utf8FromUtf16(element.WideText());
}

std::string CBackupView::Narrow(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    const std::string_view text = element.NarrowText();
    if (!element.DecodeOctets(contents))
        Find(Kind::malformed, where,
             "not a narrow text; a restore takes its encoded bytes for one");
    else if (text.size() + 1 != contents.size())
        Find(Kind::malformed, where, "a text that doesn't end with its one terminating zero");
    return std::string(text);
}

uint32_t CBackupView::Integer(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    if (!element.DecodeInteger(contents))
        Find(Kind::malformed, where, "not an integer; a restore reads 0");
    else if (contents.empty() || contents.size() > 4)
        Find(Kind::malformed, where,
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
        const std::string where = at("templates", i);
        if (!Sequence(list[i], where, pair))
            continue;
        if (pair.Count() != 2)
            Find(Kind::malformed, where, countText(pair.Count(), "element") + " in a pair");
        BackupFile file;
        file.name = Wide(pair[0], where + " name");
        std::span<const uint8_t> contents;
        if (pair.Count() > 1 && !pair[1].DecodeOctets(contents))
            Find(Kind::malformed, where,
                 "its content isn't an octet string; a restore writes the encoded bytes");
        file.content = pair[1].Octets();
        if (file.name.empty()) {
            Find(Kind::malformed, where, "no name; a restore writes no file");
            continue;
        }
        static constexpr std::string_view mark = "alien|";
        file.alien = file.name.starts_with(mark);
        file.target = file.alien ? file.name.substr(mark.size()) : lastPart(file.name);
        JudgeTarget(file, where);
        files.push_back(std::move(file));
    }
}

void CBackupView::JudgeTarget(const BackupFile& file, const std::string& where)
{
    const auto hostile = [&](const char* what) {
        Find(Kind::hostile, where, what + (": " + file.name));
    };
    const std::string name = lastPart(file.target);
    const std::string suffix =
        name.size() < 4 ? std::string() : lower(name.substr(name.size() - 4));
    if (file.alien && !isDrivePath(file.target))
        hostile("the full path isn't on a drive of the machine");
    if (climbs(file.alien ? file.target : file.name))
        hostile("the path climbs out of its folder");
    if (!file.alien && file.target != file.name)
        hostile("the name holds a path, which a restore drops");
    if (file.alien && file.target.find(':', 2) != std::string::npos)
        hostile("the path names a stream of a file");
    if (std::any_of(name.begin(), name.end(),
                    [](char c) { return static_cast<unsigned char>(c) < 0x20; }) ||
        name.find_first_of("<>\"|?*") != std::string::npos || isDevice(name))
        hostile("the name is none that a file can have");
    else if (suffix != ".vlm" && (file.alien || suffix != ".vls"))
        hostile("the file is no template");
}

void CBackupView::DecodeLinks(const CDerElement& element)
{
    CDerSequenceView list;
    CDerSequenceView record;
    Sequence(element, "quicklinks", list);
    links.reserve(list.Count());
    for (size_t i = 0; i < list.Count(); ++i) {
        const std::string where = at("quicklinks", i);
        if (!Sequence(list[i], where, record))
            continue;
        if (record.Count() != 5 && record.Count() != 6) {
            Find(Kind::malformed, where,
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
                Find(Kind::malformed, where, "wocred is neither 0 nor 1; a restore reads 0");
        } else if (!oldLinks) {
            Find(Kind::note, where, "no wocred, as in an earlier version; a restore reads 0");
        }
        if (link.manifest.find_first_of("\\/:") != std::string::npos)
            Find(Kind::hostile, where, "the manifest holds a path: " + link.manifest);
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
        const std::string where = at("categories", i);
        if (Sequence(list[i], where, pair) && pair.Count() != 2)
            Find(Kind::malformed, where, countText(pair.Count(), "element") + " in a pair");
        BackupCategory category; // a missing item is an empty text, as a restore has it
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
            Find(Kind::malformed, "settings",
                 "an empty document; a restore leaves the settings as they are");
    } else if (list.Count() > 1) {
        settings.form = SettingsForm::legacy;
        settings.showPrompt = Integer(list[0], "settings prompt") == 1;
        settings.hotKey = Wide(list[1], "settings hot key");
        if (list.Count() == 3)
            settings.dontPromptList = list[2].Encoded();
        Find(Kind::note, "settings",
             countText(list.Count(), "element") + " without a document, as in an earlier version");
    } else {
        settings.form = SettingsForm::unsupported;
        Find(Kind::malformed, "settings", "no elements; a restore leaves the settings as they are");
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
