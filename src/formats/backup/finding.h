#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

// BackupPlace says where an element of a backup is: its position in the outer sequence, that of the entry in it, and that
// of the item in the entry, as deep as it goes. In the settings the items are the entries.
struct BackupPlace {
    static constexpr size_t none = SIZE_MAX;

    size_t element = none;
    size_t entry = none;
    size_t item = none;
    size_t offset = 0; // of its tag in the backup's bytes
};

// pathText gives the positions from the outside inwards, as in "0/3/1"; empty for the backup itself.
std::string pathText(const BackupPlace& place);

// BackupFinding is one thing that an export would not write, or that a reader should know before a
// restore.
struct BackupFinding {
    enum class Grade {
        note,    // read without harm: an earlier version's form, bytes after the end
        warning, // restored as it is, but to a place or with a content that is worth a look
        error,   // a restore refuses, drops, misreads or replaces this part
    };
    Grade grade;
    std::string where;      // element and position, such as "templates[3]"
    std::string what;       // a clause; UTF-8, with names as they are stored
    BackupPlace place = {}; // of the element, or of what should hold a missing one
};

// FindingSink takes each finding when it is found: there may be several for each entry of a backup.
using FindingSink = std::function<void(BackupFinding finding)>;

// placeText gives an entry's element and position, as in "templates[3]".
std::string placeText(const char* element, size_t index);

// countText is "1 byte", "2 bytes".
std::string countText(size_t count, const char* thing);
