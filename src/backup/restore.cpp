#include "backup/restore.h"

#include "backup/settingsdocument.h"
#include "backup/storagedata.h"
#include "common/status.h"
#include "formats/backup/records.h"
#include "quicklinks/categories.h"
#include "tracecore/tracer.h"

#include <windows.h>

#include <algorithm>
#include <new>

using namespace tracecore;

namespace {

void restoreElements(const CDerSequenceView& backup, const BackupVersion& version)
{
    const CDerElement categories = backup[2];
    const CDerElement settings = backup[3];
    CStorageData::RestoreTemplates(backup[0]);
    CStorageData::RestoreQuickLinks(backup[1], version.linkTexts);
    if (version.categories)
        qlcategories_restore(&categories);
    if (version.settings)
        RestoreSettings(&settings);
}

} // namespace

void RestoreBackup(std::span<const uint8_t> bytes)
{
    try {
        CDerSequenceView backup;
        (void)backup.Decode(bytes); // bytes that are no backup have no elements
        const BackupVersion version = versionOf(backup.Count());
        if (!version.restorable)
            raiseStatus(E_UNEXPECTED);
        restoreElements(backup, version);
    } catch (const std::bad_alloc&) {
        raiseStatus(E_OUTOFMEMORY);
    }
}

void RestoreFromSafeArray(const CVLByteArray& array)
{
    const LONG lower = array.LowerBound();
    const LONG upper = array.UpperBound();
    traceFormat(0, "lBound = %d, uBound = %d", static_cast<int>(lower), static_cast<int>(upper));
    const uint32_t last = static_cast<uint32_t>(upper) - static_cast<uint32_t>(lower);
    void* data = nullptr;
    const bool accessed = SUCCEEDED(SafeArrayAccessData(array.Get(), &data));
    std::span<const uint8_t> bytes;
    // An array of several dimensions may hold less than its first one says.
    if (last != 0xFFFFFFFF && data)
        bytes = array.Bytes().first(std::min(array.Bytes().size(), size_t{last} + 1));
    try {
        RestoreBackup(bytes);
    } catch (...) {
        // SafeArrayUnaccessData is for a restore that ran to its end. Without this unlock the array
        // would stay locked once more than its holder knows, and could not be destroyed.
        if (accessed)
            SafeArrayUnlock(array.Get());
        throw;
    }
    SafeArrayUnaccessData(array.Get());
}
