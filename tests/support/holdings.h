#pragma once

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>
#include <winternl.h>

// holdings_t is what this process has of the things that code can leave behind.
struct holdings_t {
    size_t handles = 0, threadIndexes = 0, fiberIndexes = 0, bytes = 0;

    static holdings_t now()
    {
        holdings_t held;
        // Two words with the number of entries, then six words for each, the process's number
        // first. GetProcessHandleCount gives 0 under Wine.
        static std::vector<ULONG> table(0x60000);
        NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(16), table.data(),
                                 0x60000 * sizeof(ULONG), nullptr);
        for (size_t i = 0; i < table[0]; ++i)
            held.handles += table[2 + i * 6] == GetCurrentProcessId();
        held.threadIndexes = indexesLeft(TlsAlloc, TlsFree);
        held.fiberIndexes = indexesLeft([] { return FlsAlloc(nullptr); }, FlsFree);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(GetProcessHeap(), &entry))
            held.bytes += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? entry.cbData : 0;
        return held;
    }

private:
    template <class Alloc, class Free> static size_t indexesLeft(Alloc alloc, Free free)
    {
        static DWORD taken[8192];
        size_t count = 0;
        while ((taken[count] = alloc()) != TLS_OUT_OF_INDEXES)
            ++count;
        std::for_each(taken, taken + count, free);
        return count;
    }
};

// expectKeptNothing fails the test if each of so many rounds between the two kept a handle, an index
// or more than 32 bytes.
inline void expectKeptNothing(const holdings_t& before, const holdings_t& after, size_t rounds)
{
    EXPECT_LT(0u, before.handles);
    EXPECT_GT(before.handles + rounds, after.handles);
    EXPECT_LT(before.threadIndexes, after.threadIndexes + rounds); // those left
    EXPECT_LT(before.fiberIndexes, after.fiberIndexes + rounds);
    EXPECT_GE(before.bytes + 32 * rounds, after.bytes);
}
