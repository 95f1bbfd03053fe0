#pragma once

#include "atl/safearray.h"

#include <cstdint>
#include <span>

// RestoreBackup puts the contents of a backup back: files, quick links, categories and settings.
// The number of its elements gives its version: from two it reads quick links in the old form, from
// three also categories, from four also settings, from more than four no settings.
//
// A restore is neither atomic nor undone: what was done before a failure stays done. The only check
// before the first deletion is that there are at least two elements.
//
// bytes:   the encoded backup, a loan; walked in place
// Errors:  raises E_UNEXPECTED for bytes that are no backup, with everything untouched;
//          E_OUTOFMEMORY; and what the settings document raises, with the elements before it
//          restored
void RestoreBackup(std::span<const uint8_t> bytes);

// RestoreFromSafeArray is RestoreBackup of a byte array with any lower bound; an empty one is
// refused as a backup.
//
// array:   a loan, with as many locks afterwards as before
// Errors:  raises ATL::CAtlException for bounds that can't be read, and as RestoreBackup does
void RestoreFromSafeArray(const CVLByteArray& array);
