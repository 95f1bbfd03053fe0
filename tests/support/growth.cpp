#include "growth.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <tuple>
#include <vector>

extern "C" PPEB NTAPI RtlGetCurrentPeb();

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

size_t viewCount()
{
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize)
        count += region.Type == MEM_MAPPED && region.BaseAddress == region.AllocationBase;
    return count;
}

// A library that stays to the end of the process has a count of -1, which never changes.
size_t libraryReferences()
{
    // The header knows neither the entry's node nor the node's count.
    constexpr size_t nodeOfEntry = 0x98, countOfNode = 0x18;
    size_t count = 0;
    const LIST_ENTRY& first = RtlGetCurrentPeb()->Ldr->InMemoryOrderModuleList;
    for (const LIST_ENTRY* at = first.Flink; at != &first; at = at->Flink) {
        const auto* const entry = CONTAINING_RECORD(at, LDR_DATA_TABLE_ENTRY, InMemoryOrderLinks);
        const char* const node = *reinterpret_cast<const char* const*>(
            reinterpret_cast<const char*>(entry) + nodeOfEntry);
        count += *reinterpret_cast<const ULONG*>(node + countOfNode);
    }
    return count;
}

// indexCount counts the indexes that are taken: as many as there are, less those that are left.
template <class Alloc, class Free> size_t indexCount(Alloc alloc, Free free)
{
    static DWORD taken[8192];
    size_t left = 0;
    while ((taken[left] = alloc()) != TLS_OUT_OF_INDEXES)
        ++left;
    std::for_each(taken, taken + left, free);
    return std::size(taken) - left;
}

} // namespace

// The indexes before the blocks: the platform makes room for them once.
heldResources_t::heldResources_t()
    : handles(handleCount()),
      indexes(indexCount(TlsAlloc, TlsFree) +
              indexCount([] { return FlsAlloc(nullptr); }, FlsFree)),
      blocks(blockCount()),
      views(viewCount()),
      libraries(libraryReferences())
{}

std::string heldResources_t::grownSince(const heldResources_t& before, size_t rounds) const
{
    std::string grown;
    for (const auto& [now, then, name] : {std::tuple(handles, before.handles, " handles "),
                                          {blocks, before.blocks, " blocks "},
                                          {indexes, before.indexes, " indexes "},
                                          {views, before.views, " views "},
                                          {libraries, before.libraries, " library references "}})
        if (now >= then + rounds)
            grown += std::to_string(now - then) + name;
    return grown;
}
