#include "installation.h"
#include "support/meeting.h"

#include <thread>

namespace {

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

} // namespace
