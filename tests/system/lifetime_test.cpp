#include "installation.h"
#include "support/growth.h"
#include "support/meeting.h"
#include "support/patchimport.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr const wchar_t* libraries[] = {L"VLOnlineIDs.dll", L"VLFPApi.dll", L"VloSet.dll"};

// The plugin and the threads of a process that plays the host and ends in the middle of it all.
struct host_t {
    const plugin_t plugin;
    std::atomic<bool> enough{false};
    std::atomic<unsigned> calls{0};
    std::atomic<bool> called{false}; // at least once
};

HANDLE startThread(DWORD(WINAPI* body)(void*), host_t& host)
{
    return CreateThread(nullptr, 0, body, &host, 0, nullptr);
}

// A thread that may be terminated only fails, and so loads nothing: one that dies in the system's
// loader lets no process end.
template <bool onlyFails> DWORD WINAPI keepCalling(void* context)
{
    auto& host = *static_cast<host_t*>(context);
    for (; !host.enough; host.called = true)
        onlyFails ? callAndFail(host.plugin) : callAnything(host.plugin, host.calls += 3);
    return 0;
}

// Ends amid calls, by a third of the numbers after one thread was terminated, by another third after
// all calls have come back and the plug-in is unloaded.
void endAtAnyTime(unsigned number)
{
    std::srand(number);
    auto* const host = new host_t; // not ours to free once the process ends
    host->calls = number;
    std::vector<HANDLE> threads{startThread(keepCalling<true>, *host)};
    // After a terminated thread the others load nothing either: they could wait for the heap's lock
    // with the loader's taken, which the end of the process needs.
    while (threads.size() < 3)
        threads.push_back(
            startThread(number % 3 == 1 ? keepCalling<true> : keepCalling<false>, *host));
    Sleep(static_cast<DWORD>(std::rand() % 15));
    if (number % 3 == 1) {
        while (!host->called) // the loader starts a thread, too
            Sleep(1);
        TerminateThread(threads[0], 0);
        Sleep(static_cast<DWORD>(std::rand() % 5));
    } else if (number % 3 == 2) {
        host->enough = true;
        WaitForMultipleObjects(3, threads.data(), TRUE, INFINITE);
        delete host;
    }
    ExitProcess(0);
}

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
// the plug-in is unloaded after a further call.
void endAfterAStop(unsigned number)
{
    static const HANDLE stopped = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    auto* const host = new host_t;
    HANDLE thread = nullptr;
    {
        const importPatch_t patch(GetModuleHandleW(L"VLOnlineIDs.dll"), stops[number / 2],
                                  reinterpret_cast<void*>(+[] {
                                      SetEvent(stopped);
                                      Sleep(INFINITE);
                                  }));
        thread = startThread(keepCalling<true>, *host);
        if (WaitForSingleObject(stopped, 10000) != WAIT_OBJECT_0)
            TerminateProcess(GetCurrentProcess(), 4);
    }
    if (number % 2) {
        TerminateThread(thread, 0);
        callAndFail(host->plugin);
        delete host;
    }
    ExitProcess(0);
}

// Lifetime runs again in processes of its own, which end in one of those ways: the environment
// tells them which, and its number.
class Lifetime : public installedTest
{
protected:
    void SetUp() override
    {
        if (!_wgetenv(number))
            installedTest::SetUp();
    }

    // Two processes at a time, one for each number.
    void expectEnds(void (*end)(unsigned), unsigned count)
    {
        if (const wchar_t* const mine = _wgetenv(number))
            end(static_cast<unsigned>(_wtoi(mine)));
        const std::string filter =
            "--gtest_filter=Lifetime." +
            std::string(testing::UnitTest::GetInstance()->current_test_info()->name());
        for (unsigned i = 0; i < count; i += 2) {
            CKernelHandle processes[2];
            for (unsigned j = 0; j < 2 && i + j < count; ++j) {
                SetEnvironmentVariableW(number, std::to_wstring(i + j).c_str());
                processes[j].reset(reinterpret_cast<HANDLE>(_wspawnl(
                    _P_NOWAIT, moduleFileName(nullptr).c_str(), L"system_test", L"--gtest_brief=1",
                    std::wstring(filter.begin(), filter.end()).c_str(), nullptr)));
            }
            SetEnvironmentVariableW(number, nullptr);
            for (unsigned j = 0; j < 2 && i + j < count; ++j) {
                SCOPED_TRACE(i + j);
                DWORD status = 99;
                EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(processes[j].get(), 30000)) << "hangs";
                GetExitCodeProcess(processes[j].get(), &status);
                EXPECT_EQ(0u, status);
                TerminateProcess(processes[j].get(), 5);
            }
            fs::remove(m_traceFile);
        }
    }

    static constexpr wchar_t number[] = L"VL_TEST_END";
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
         [] {
             meeting_t meeting(2);
             std::jthread outliving;
             {
                 const plugin_t plugin;
                 outliving = std::jthread([&] {
                     callAndFail(plugin);
                     meeting.arriveAndWait();
                     meeting.arriveAndWait();
                 });
                 for (unsigned i = 0; i < 8; ++i)
                     callAnything(plugin, i);
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

// Many more by VL_TEST_ENDS in the environment.
TEST_F(Lifetime, ProcessEndsAtAnyTime)
{
    const wchar_t* const wanted = _wgetenv(L"VL_TEST_ENDS");
    expectEnds(endAtAnyTime, wanted ? static_cast<unsigned>(_wtoi(wanted)) : 30);
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
