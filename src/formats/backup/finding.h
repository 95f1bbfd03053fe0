#pragma once

#include <functional>
#include <string>

// BackupFinding is one thing that an export would not write, or that a reader should know before a
// restore.
struct BackupFinding {
    enum class Grade {
        note,    // read without harm: an earlier version's form, bytes after the end
        warning, // restored as it is, but to a place or with a content that is worth a look
        error,   // a restore refuses, drops, misreads or replaces this part
    };
    Grade grade;
    std::string where; // element and position, such as "templates[3]"
    std::string what;  // a clause; UTF-8, with names as they are stored
};

// FindingSink takes each finding when it is found: there may be several for each entry of a backup.
using FindingSink = std::function<void(BackupFinding finding)>;

// placeText gives an entry's element and position, as in "templates[3]".
std::string placeText(const char* element, size_t index);

// countText is "1 byte", "2 bytes".
std::string countText(size_t count, const char* thing);
