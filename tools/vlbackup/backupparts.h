#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// BackupParts is what a new backup is made of: records of other backups, as they are encoded there. Spans are views into
// their bytes.
struct BackupParts {
    using Records = std::vector<std::span<const uint8_t>>;

    Records files;
    Records links; // with texts of either form
    Records categories;
    Records
        rest; // the elements after the categories: the settings, of five or more what nobody knows
};

// encodeBackup makes a backup in the form of the earliest version that holds it all: a restore leaves alone what is not
// in it.
//
// elementCount: that it has at least, if more than two
std::vector<uint8_t> encodeBackup(const BackupParts& parts, size_t elementCount);
