#include "salvage.h"

#include "formats/backup/elementtree.h"
#include "formats/backup/formcheck.h"
#include "formats/der/derheader.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"
#include "shared/backupinput.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t mostItems = 6;
constexpr size_t longestText = 1 << 17; // bytes: more than any path or link

// Record is an element that looks like one of a backup's.
struct Record {
    ElementKind kind;
    std::span<const uint8_t> bytes;
};

// readItems reads a sequence of at most six elements, none of which is a sequence. False for anything else.
bool readItems(std::span<const uint8_t> bytes, Record& record, std::vector<CDerElement>& items)
{
    std::span<const uint8_t> contents;
    CDerReader reader(bytes);
    if (!reader.ReadElement(record.bytes) ||
        !CDerReader(record.bytes).Read(derTag::sequence, contents))
        return false;
    items.clear();
    std::span<const uint8_t> item;
    for (CDerReader rest(contents); !rest.AtEnd(); items.emplace_back(item))
        if (items.size() == mostItems || !rest.ReadElement(item) || item[0] == derTag::sequence)
            return false;
    return !items.empty();
}

bool isTag(const CDerElement& item, uint8_t tag)
{
    return item.Encoded()[0] == tag;
}

bool isDocument(const CDerElement& item)
{
    const std::string_view text = item.NarrowText();
    const size_t first = text.find_first_not_of(" \t\r\n");
    return isTag(item, derTag::octetString) && first != std::string_view::npos &&
           (text[first] == '{' || text[first] == '/') && parseDocument(std::string(text));
}

// The kind of a record, by the number and tags of its items; other for none.
ElementKind kindOf(const std::vector<CDerElement>& items)
{
    if (isTag(items[0], derTag::integer))
        return items.size() == 2 || items.size() == 3 ? ElementKind::settings : ElementKind::other;
    if (items.size() == 1)
        return isDocument(items[0]) ? ElementKind::settings : ElementKind::other;
    if (items[0].Encoded().size() > longestText)
        return ElementKind::other;
    if (items.size() == 2)
        return isTag(items[1], derTag::octetString) ? ElementKind::storedFile
                                                    : ElementKind::category;
    return items.size() >= 5 ? ElementKind::link : ElementKind::other;
}

// hasForm asks whether verify finds no error in the form of a record.
bool hasForm(const Record& record, const std::vector<CDerElement>& items)
{
    bool good = true;
    CFormCheck check(
        [&](const BackupFinding& finding) {
            good = good && finding.grade != BackupFinding::Grade::error;
        },
        record.bytes, 0, "");
    CDerSequenceView view;
    good = check.List(CDerElement(record.bytes), view);
    if (record.kind == ElementKind::storedFile)
        check.File(view);
    else if (record.kind == ElementKind::category)
        check.Category(view);
    else if (record.kind == ElementKind::link)
        check.Link(view, isTag(items[0], derTag::octetString) ? TextForm::octets : TextForm::wide);
    else
        check.Settings(view);
    return good;
}

// nameIn gives the name at the front of a record that isn't intact, if there is one.
std::string nameIn(std::span<const uint8_t> bytes)
{
    size_t header = 0;
    size_t length = 0;
    if (!CDerReader(bytes).Header(header, length) || header >= bytes.size())
        return {};
    std::span<const uint8_t> name;
    CDerReader reader(bytes.subspan(header));
    return reader.ReadElement(name) && name[0] == derTag::bmpString
               ? utf8FromUtf16(CDerElement(name).WideText())
               : std::string();
}

// addGap judges bytes between intact records. What is there in a whole backup are the tags and lengths of what holds
// them, and nothing else.
void addGap(std::span<const uint8_t> backup, size_t begin, size_t end, std::vector<Loss>& losses)
{
    size_t lost = begin; // the last tag and length, which may be those of a damaged record
    for (size_t at = begin; at < end;) {
        size_t header = 0;
        size_t length = 0;
        const auto rest = backup.subspan(at, end - at);
        if (rest[0] != derTag::sequence || !CDerReader(rest).Header(header, length)) {
            losses.push_back({lost, end - lost, nameIn(backup.subspan(lost, end - lost)),
                              "damaged, or not of a kind that a restore takes"});
            return;
        }
        lost = at;
        at += header;
    }
}

} // namespace

Salvage salvageBackup(std::span<const uint8_t> backup)
{
    Salvage salvage;
    std::vector<CDerElement> items;
    size_t gap = 0;
    for (size_t at = 0; at < backup.size();) {
        Record record{ElementKind::other, {}};
        if (backup[at] != derTag::sequence || !readItems(backup.subspan(at), record, items) ||
            (record.kind = kindOf(items)) == ElementKind::other || !hasForm(record, items)) {
            ++at;
            continue;
        }
        addGap(backup, gap, at, salvage.losses);
        if (record.kind == ElementKind::settings)
            salvage.rest = {record.bytes}; // the last is the backup's own
        else
            (record.kind == ElementKind::storedFile ? salvage.files
             : record.kind == ElementKind::link     ? salvage.links
                                                    : salvage.categories)
                .push_back(record.bytes);
        gap = at += record.bytes.size();
    }
    addGap(backup, gap, backup.size(), salvage.losses);
    const size_t announced = CDerReader(backup).Announced();
    if (backup.size() < announced)
        salvage.losses.push_back({backup.size(),
                                  announced - backup.size(),
                                  {},
                                  "missing at the end, by the length that the backup gives"});
    return salvage;
}
