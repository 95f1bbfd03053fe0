#pragma once

#include "safetycopy.h"

#include <unordered_map>
#include <vector>

// CCopyHoldings knows what each of several safety copies holds, to find those that hold nothing of
// their own.
class CCopyHoldings
{
public:
    // copies: on loan
    explicit CCopyHoldings(const std::vector<safetyCopy_t>& copies);

    // IsElsewhere is true if all of a copy is on the disk, in the registry or in another copy.
    bool IsElsewhere(size_t place) const;

    // Drop forgets a copy, which is going to be removed.
    void Drop(size_t place);

private:
    using fileMap_t = std::unordered_map<std::wstring, const copiedFile_t*>;

    bool HoldsFile(size_t place, const copiedFile_t& file) const;
    bool AnotherHolds(size_t place, const registryValue_t& category) const;

    std::vector<const safetyCopy_t*> m_copies; // null for one that was dropped
    std::vector<fileMap_t> m_files;            // of each copy, by fileKey
};
