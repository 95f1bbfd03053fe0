#include "backup/restore.h"

#include "backup/settingsdocument.h"
#include "backup/storagedata.h"
#include "common/status.h"
#include "formats/der/derview.h"
#include "quicklinks/categories.h"
#include "tracecore/tracer.h"

#include <windows.h>
#include <wincrypt.h>

#include <algorithm>
#include <new>

using namespace tracecore;

namespace {

// The loan's readers don't write, in spite of its type.
_CRYPTOAPI_BLOB LoanOf(const CDerElement& element)
{
    const std::span<const uint8_t> bytes = element.Encoded();
    return {static_cast<DWORD>(bytes.size()), const_cast<BYTE*>(bytes.data())};
}

void RestoreElements(const CDerSequenceView& backup)
{
    const size_t count = backup.Count();
    CStorageData::RestoreTemplates(backup[0]);
    CStorageData::RestoreQuickLinks(backup[1], count == 2 ? TextForm::Octets : TextForm::Wide);
    if (count >= 3) {
        const _CRYPTOAPI_BLOB categories = LoanOf(backup[2]);
        qlcategories_restore(&categories);
    }
    if (count == 4) { // not of five or more
        const _CRYPTOAPI_BLOB settings = LoanOf(backup[3]);
        RestoreSettings(&settings);
    }
}

} // namespace

void RestoreBackup(std::span<const uint8_t> bytes)
{
    try {
        CDerSequenceView backup;
        if (!backup.Decode(bytes) || backup.Count() < 2)
            raiseStatus(E_UNEXPECTED);
        RestoreElements(backup);
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
