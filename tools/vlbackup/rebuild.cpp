#include "formats/backup/backupview.h"
#include "salvage.h"
#include "shared/backupinput.h"
#include "verbs.h"

#include <algorithm>
#include <map>

namespace {

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

void drop(BackupParts::Records& records, size_t element, const Faults& faults,
          std::span<const uint8_t> backup, std::vector<Loss>& losses)
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
        std::vector<uint8_t> bytes = encodeBackup(salvage, elementCount);
        const Faults faults = faultsOf(bytes);
        if (faults.empty())
            return bytes;
        drop(salvage.files, 0, faults, backup, salvage.losses);
        drop(salvage.links, 1, faults, backup, salvage.losses);
        drop(salvage.categories, 2, faults, backup, salvage.losses);
        const auto settings = faults.lower_bound({3, 0});
        if (settings == faults.end() || salvage.rest.empty())
            continue;
        const std::span<const uint8_t> lost = salvage.rest[0];
        salvage.losses.push_back({static_cast<size_t>(lost.data() - backup.data()), lost.size(),
                                  "settings", settings->second});
        salvage.rest.clear();
    }
}
