#include "operations.h"
#include "support/growth.h"
#include "support/meeting.h"
#include "support/patchimport.h"
#include "support/process.h"

#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr const wchar_t* libraries[] = {L"VLOnlineIDs.dll", L"VLFPApi.dll", L"VloSet.dll"};

const fs::path built = fs::path(moduleFileName(nullptr)).parent_path().parent_path();

// Ends with a library loaded that has something to free, and no time to do it.
void endWithoutAWord(unsigned number)
{
    const HMODULE library = LoadLibraryW((built / libraries[number]).c_str());
    for (const char* function : {"free", "CloseHandle", "WaitForSingleObject"})
        new importPatch_t(library, function, reinterpret_cast<void*>(+[] {
                              TerminateProcess(GetCurrentProcess(), 3);
                          }));
    ExitProcess(0);
}

constexpr const char* stops[] = {"malloc",      "free",         "WaitForSingleObject",
                                 "WriteFile",   "GetLocalTime", "MultiByteToWideChar",
                                 "CreateFileW", "ReleaseMutex"};

// Ends with a thread that stands still in some call; by every other number it is terminated, and
// the plug-in is unloaded after a further call. The thread's calls only fail, and so load nothing:
// one that dies in the system's loader lets no process end.
void endAfterAStop(unsigned number)
{
    static const HANDLE stopped = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    auto* const plugin = new plugin_t; // not ours to free once the process ends
    HANDLE thread = nullptr;
    {
        const importPatch_t patch(GetModuleHandleW(L"VLOnlineIDs.dll"), stops[number / 2],
                                  reinterpret_cast<void*>(+[] {
                                      SetEvent(stopped);
                                      Sleep(INFINITE);
                                  }));
        const auto keepCalling = [](void* context) -> DWORD {
            for (;;)
                callAndFail(*static_cast<plugin_t*>(context));
        };
        thread = CreateThread(nullptr, 0, keepCalling, plugin, 0, nullptr);
        if (WaitForSingleObject(stopped, 10000) != WAIT_OBJECT_0)
            TerminateProcess(GetCurrentProcess(), 4);
    }
    if (number % 2) {
        TerminateThread(thread, 0);
        callAndFail(*plugin);
        delete plugin;
    }
    ExitProcess(0);
}

// Lifetime runs again in processes of its own, which end in one of those ways: the environment
// has its number.
class Lifetime : public operationsTest
{
protected:
    void SetUp() override
    {
        if (!_wgetenv(numberName))
            operationsTest::SetUp();
    }

    void expectEnds(void (*end)(unsigned), unsigned count)
    {
        if (const wchar_t* const mine = _wgetenv(numberName))
            end(static_cast<unsigned>(_wtoi(mine)));
        const std::string filter =
            "--gtest_brief=1 --gtest_filter=Lifetime." +
            std::string(testing::UnitTest::GetInstance()->current_test_info()->name());
        for (unsigned number = 0; number < count; ++number) {
            SCOPED_TRACE(number);
            SetEnvironmentVariableW(numberName, std::to_wstring(number).c_str());
            const process_t process(moduleFileName(nullptr), wideFromUtf8(filter));
            SetEnvironmentVariableW(numberName, nullptr);
            const processResult_t result = process.result();
            EXPECT_EQ(0u, result.status) << result.out << result.err;
            fs::remove(m_traceFile);
        }
    }

    static constexpr wchar_t numberName[] = L"VL_TEST_END";
};

TEST_F(Lifetime, LoadsKeepNothing)
{
    // What a host has loaded anyway.
    const CLoadedModule held[] = {
        CLoadedModule(LoadLibraryW(L"crypt32")), CLoadedModule(LoadLibraryW(L"oleaut32")),
        CLoadedModule(LoadLibraryW(L"shell32")), CLoadedModule(LoadLibraryW(L"version"))};
    const auto loaded = [this](const wchar_t* name) {
        EXPECT_TRUE(CLoadedModule(LoadLibraryW((m_built / name).c_str())));
    };
    const std::pair<size_t, std::function<void()>> rows[] = {
        {1200, [&] { std::for_each(std::begin(libraries), std::end(libraries), loaded); }},
        {1200, [] { callAndFail({}); }},
        {50,
         [this] {
             meeting_t meeting(2);
             std::jthread outliving;
             {
                 const plugin_t plugin;
                 outliving = std::jthread([&] {
                     callAndFail(plugin);
                     meeting.arriveAndWait();
                     meeting.arriveAndWait();
                 });
                 for (const char* name : {"status", "backup", "restore", "refusals"})
                     run(plugin, name);
                 meeting.arriveAndWait();
             }
             meeting.arriveAndWait();
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const auto& [loads, load] = row;
        load();
        load();
        const heldResources_t before;
        for (size_t i = 0; i < loads; ++i)
            load();
        EXPECT_EQ("", heldResources_t().grownSince(before, loads));
        EXPECT_FALSE(GetModuleHandleW(libraries[1]) || GetModuleHandleW(libraries[2]));
    }
}

TEST_F(Lifetime, ProcessEndsWithoutAWordFromUs)
{
    expectEnds(endWithoutAWord, std::size(libraries));
}

TEST_F(Lifetime, ProcessEndsAndUnloadsThoughAThreadStandsStill)
{
    expectEnds(endAfterAStop, 2 * std::size(stops));
}

} // namespace
