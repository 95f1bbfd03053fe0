#include "growth.h"

#include <vector>

#include <windows.h>
#include <winternl.h>

namespace {

// GetProcessHandleCount gives 0 under Wine.
size_t handleCount()
{
    // Two words with the number of entries, then six words for each, the process's number first.
    static std::vector<ULONG> table(0x60000);
    NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(16), table.data(),
                             static_cast<ULONG>(table.size() * sizeof(ULONG)), nullptr);
    size_t count = 0;
    for (size_t i = 0; i < table[0]; ++i)
        count += table[2 + i * 6] == GetCurrentProcessId();
    return count;
}

size_t blockCount()
{
    HANDLE heaps[64];
    size_t count = 0;
    for (DWORD i = GetProcessHeaps(64, heaps); i-- > 0;) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry))
            count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
    }
    return count;
}

} // namespace

heldResources_t::heldResources_t() : handles(handleCount()), blocks(blockCount()) {}

std::string heldResources_t::grownSince(const heldResources_t& before) const
{
    std::string grown;
    if (handles > before.handles)
        grown += std::to_string(handles - before.handles) + " handles ";
    if (blocks > before.blocks)
        grown += std::to_string(blocks - before.blocks) + " blocks ";
    return grown;
}
