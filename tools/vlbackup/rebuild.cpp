#include "formats/backup/records.h"
#include "formats/der/dernode.h"
#include "formats/text/unicode.h"
#include "salvage.h"
#include "shared/backupinput.h"
#include "verbs.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace {

using Spans = std::vector<std::span<const uint8_t>>;

void setList(CDerNode& node, const Spans& records)
{
    node.SetSequence(records.size());
    for (size_t i = 0; i < records.size(); ++i)
        node.Child(i).SetEncoded(records[i]);
}

// setLink stores a record as it is, unless its texts have the other form.
void setLink(CDerNode& node, std::span<const uint8_t> bytes, TextForm form)
{
    CDerSequenceView record;
    BackupLink link;
    (void)record.Decode(bytes);
    std::span<const uint8_t> octets;
    const TextForm found = record[0].DecodeOctets(octets) ? TextForm::octets : TextForm::wide;
    if (found == form || !decodeLink(record, found, link)) {
        node.SetEncoded(bytes);
        return;
    }
    node.SetSequence(6);
    const auto set = [&](size_t item, const std::string& text) {
        if (form == TextForm::octets)
            node.Child(item).SetNarrow(text);
        else
            node.Child(item).SetWide(utf16FromUtf8(text));
    };
    set(0, link.name);
    set(1, link.target);
    set(2, link.manifest);
    node.Child(3).SetInteger(link.profile);
    set(4, link.manifestid);
    node.Child(5).SetInteger(link.wocred ? 1 : 0);
}

std::vector<uint8_t> encode(const Salvage& salvage, size_t elementCount)
{
    const bool categories = !salvage.categories.empty() || elementCount >= 3;
    CDerTree backup;
    backup.SetSequence(!salvage.settings.empty() ? 4 : categories ? 3 : 2);
    setList(backup.Child(0), salvage.files);
    CDerNode& links = backup.Child(1);
    links.SetSequence(salvage.links.size());
    for (size_t i = 0; i < salvage.links.size(); ++i)
        setLink(links.Child(i), salvage.links[i], versionOf(backup.Count()).linkTexts);
    if (backup.Count() > 2)
        setList(backup.Child(2), salvage.categories);
    if (backup.Count() > 3)
        backup.Child(3).SetEncoded(salvage.settings);
    return backup.Encode();
}

// What is to be left out, by element and entry, and why.
using Faults = std::map<std::pair<size_t, size_t>, std::string>;

template <class Items, class PlaceOf>
void addRepeated(const Items& items, size_t element, PlaceOf placeOf, Faults& faults)
{
    const std::vector<bool> last =
        lastOfEach(items.size(), [&](size_t i) { return items[i].Key(); });
    for (size_t i = 0; i < items.size(); ++i)
        if (!last[i])
            faults.try_emplace({element, placeOf(i)},
                               '"' + items[i].name +
                                   "\" comes again later, and a restore keeps the last");
}

Faults faultsOf(const std::vector<uint8_t>& bytes)
{
    Faults errors;
    CBackupView view([&](const BackupFinding& finding) {
        if (finding.grade == BackupFinding::Grade::error)
            errors.try_emplace({finding.place.element, finding.place.entry}, finding.what);
    });
    (void)decodeBackup(bytes, view); // it has two elements or more
    Faults repeated;
    addRepeated(
        view.files, 0, [&](size_t i) { return view.files[i].place; }, repeated);
    addRepeated(
        view.links, 1, [&](size_t i) { return view.links[i].place; }, repeated);
    addRepeated(
        view.categories, 2, [](size_t i) { return i; }, repeated);
    // Without these, the error of the last one may be gone.
    return repeated.empty() ? errors : repeated;
}

void drop(Spans& records, size_t element, const Faults& faults, std::span<const uint8_t> backup,
          std::vector<Loss>& losses)
{
    size_t kept = 0;
    for (size_t i = 0; i < records.size(); ++i) {
        const auto fault = faults.find({element, i});
        if (fault == faults.end())
            records[kept++] = records[i];
        else
            losses.push_back({static_cast<size_t>(records[i].data() - backup.data()),
                              records[i].size(),
                              {},
                              fault->second});
    }
    records.resize(kept);
}

} // namespace

std::vector<uint8_t> rebuildBackup(Salvage& salvage, std::span<const uint8_t> backup,
                                   size_t elementCount)
{
    for (;;) {
        std::vector<uint8_t> bytes = encode(salvage, elementCount);
        const Faults faults = faultsOf(bytes);
        if (faults.empty())
            return bytes;
        drop(salvage.files, 0, faults, backup, salvage.losses);
        drop(salvage.links, 1, faults, backup, salvage.losses);
        drop(salvage.categories, 2, faults, backup, salvage.losses);
        const auto settings = faults.lower_bound({3, 0});
        if (settings == faults.end() || salvage.settings.empty())
            continue;
        salvage.losses.push_back({static_cast<size_t>(salvage.settings.data() - backup.data()),
                                  salvage.settings.size(), "settings", settings->second});
        salvage.settings = {};
    }
}
