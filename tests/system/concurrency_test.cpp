#include <winternl.h>

#include <thread>

#include "installation.h"
#include "support/meeting.h"

namespace {

// handleCount counts the handles of this process; GetProcessHandleCount gives 0 under Wine.
size_t handleCount()
{
    // Two words with the number of entries, then six words for each, the process's number first.
    std::vector<ULONG> table(0x60000);
    EXPECT_EQ(0, NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(16), table.data(),
                                          0x60000 * sizeof(ULONG), nullptr));
    size_t count = 0;
    for (size_t i = 0; i < table[0]; ++i)
        count += table[2 + i * 6] == GetCurrentProcessId();
    return count;
}

using Concurrency = installedTest;

TEST_F(Concurrency, ThreadsThatMeetAtFirstUseGetEqualResultsAndTraces)
{
    constexpr size_t threadCount = 8;
    fs::create_directory(m_krs / L"Cache"); // only one of them could make it
    for (int round = 0; round < 5; ++round) {
        fs::remove(m_traceFile);
        DWORD ids[threadCount];
        bytes backups[threadCount];
        {
            const plugin_t plugin;
            meeting_t together(threadCount);
            std::vector<std::jthread> threads;
            for (size_t i = 0; i < threadCount; ++i) {
                threads.emplace_back([&, i] {
                    ids[i] = GetCurrentThreadId();
                    value_t names, data;
                    together.arriveAndWait();
                    plugin.make()->Release();
                    EXPECT_EQ(m_icon, plugin.property(propertyIconLocation));
                    EXPECT_EQ(S_OK,
                              plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data));
                    if (data.vt == (VT_ARRAY | VT_UI1))
                        backups[i] = bytesOf(data);
                });
            }
        }
        EXPECT_NE(std::string::npos, traced(ids[0]).find("Use Grabbing Creds"));
        for (size_t i = 1; i < threadCount; ++i) {
            EXPECT_EQ(backups[0], backups[i]);
            EXPECT_EQ(traced(ids[0]), traced(ids[i]));
        }
    }
}

TEST_F(Concurrency, LoadingAndUnloadingLeavesNothingOfOursBehind)
{
    constexpr size_t loads = 30;
    // The static runtime keeps so many of a thread that loaded a DLL, whoever wrote the DLL.
    constexpr size_t keptByTheRuntime = 4;
    size_t before = 0;
    for (size_t i = 0; i <= loads; ++i) {
        {
            const plugin_t plugin;
            value_t names, data(newLogon());
            EXPECT_EQ(E_POINTER, plugin.as<IVLKTElementUI>()->GetProperty(propertyName, nullptr));
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->SetStorageData(&data));
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data));
        }
        if (i == 0)
            before = handleCount();
    }
    EXPECT_LT(0u, before);
    EXPECT_GE(before + loads * keptByTheRuntime, handleCount());
}

} // namespace
