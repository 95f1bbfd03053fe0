#pragma once

#include "backupparts.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Loss is a part of a damaged backup that could not be saved.
struct Loss {
    size_t offset;
    size_t size;      // bytes; those that are missing, where the end is
    std::string name; // of the entry, if it can still be read
    std::string what;
};

// Salvage is what is intact in a damaged backup: every record that verify finds no error of form in, wherever it is. The
// rest is the settings, or nothing.
struct Salvage : BackupParts {
    std::vector<Loss> losses;

    bool Empty() const noexcept
    {
        return files.empty() && links.empty() && categories.empty() && rest.empty();
    }
};

// salvageBackup looks for records at every byte that is in no intact one, so that no length of what holds them is needed.
Salvage salvageBackup(std::span<const uint8_t> backup);

// rebuildBackup makes a backup of what was saved, as encodeBackup does. What verify finds an error in is left out, and
// added to the losses: names that no file can have, and all but the last of equal ones.
//
// backup:       the bytes that the spans are views of
// elementCount: of the damaged backup, or 0 if that isn't known
std::vector<uint8_t> rebuildBackup(Salvage& salvage, std::span<const uint8_t> backup,
                                   size_t elementCount);
