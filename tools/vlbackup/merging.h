#pragma once

#include "verbs.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

enum class MergeSource { both, first, second };

// MergedItem is one thing that a merged backup has, or could have.
struct MergedItem {
    std::string element; // "templates", "quicklinks", "categories" or "settings"
    std::string item;    // the name of the file, link, category or setting; empty for all of it
    MergeSource source = MergeSource::both;
    std::string conflict =
        {}; // what differs, if both have it, but not the same; then one was preferred
};

// mergeBackups puts two backups, of whatever versions, together: what only one has, what both have once, and of what
// differs the one of the preferred side. Two items are one if a restore to Windows would keep one of them: names in
// another case are those of one file, links of one template and profile are one link. Of the settings that is each
// member of the document. A data file that is stored empty because it wasn't there gives way.
//
// first, second: without an error, so that nothing comes twice in either
// preferred:     first or second
// sink:          gets every item, in the order of the new backup
std::vector<uint8_t> mergeBackups(const OpenBackup& first, const OpenBackup& second,
                                  MergeSource preferred,
                                  const std::function<void(MergedItem item)>& sink);
