#include "operations.h"
#include "support/freshprocess.h"
#include "support/growth.h"
#include "support/meeting.h"
#include "support/patchimport.h"

#include <pthread.h>

#include <atomic>
#include <functional>
#include <optional>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr const wchar_t* libraries[] = {L"VLOnlineIDs.dll", L"VLFPApi.dll", L"VloSet.dll"};

const fs::path built = fs::path(moduleFileName(nullptr)).parent_path().parent_path();

// Ends with a library loaded that has something to free, and no time to do it.
void endWithoutAWord(const wchar_t* name)
{
    const HMODULE library = LoadLibraryW((built / name).c_str());
    for (const char* function : {"free", "CloseHandle", "WaitForSingleObject"})
        new importPatch_t(library, function, reinterpret_cast<void*>(+[] {
                              TerminateProcess(GetCurrentProcess(), 3);
                          }));
    ExitProcess(0);
}

constexpr const char* stops[] = {"malloc",      "free",         "WaitForSingleObject",
                                 "WriteFile",   "GetLocalTime", "MultiByteToWideChar",
                                 "CreateFileW", "ReleaseMutex"};
constexpr unsigned stopCount = 2 * std::size(stops);

// Lifetime runs again in processes of its own, which end in one of those ways: their role is its
// number.
class Lifetime : public operationsTest
{
protected:
    // end is while a thread stands still in some call, or at any moment of all operations. By some
    // numbers a thread was terminated before, or the plug-in is unloaded.
    [[noreturn]] void end(unsigned number)
    {
        static std::atomic<bool> enough{false}, hasFailed{false};
        static const HANDLE stopped = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        std::minstd_rand random(number + 1);
        auto* const plugin = new silentPlugin_t; // not ours to free once the process ends
        const bool stands = number < stopCount;
        const unsigned kind = stands ? number % 2 * 2 : number % 3;
        std::optional<importPatch_t> patch;
        if (stands)
            patch.emplace(GetModuleHandleW(L"VLOnlineIDs.dll"), stops[number / 2],
                          reinterpret_cast<void*>(+[] {
                              SetEvent(stopped);
                              Sleep(INFINITE);
                          }));
        // A thread that may be terminated only fails, and so loads nothing: one that dies in the
        // system's loader lets no process end. Nor do the others then load anything: they could
        // wait for the heap's lock with the loader's taken.
        const auto call = [this, plugin](unsigned seed, bool onlyFails) {
            for (std::minstd_rand mine(seed); !enough; hasFailed = onlyFails)
                onlyFails ? callAndFail(*plugin)
                          : void(run(*plugin, operationNames[mine() % std::size(operationNames)]));
        };
        std::vector<std::thread> threads;
        threads.emplace_back(call, 0, true);
        for (int i = 0; i < (stands ? 0 : 3); ++i)
            threads.emplace_back(call, random(), kind == 1);
        std::thread([this] {
            while (WaitForSingleObject(m_agentStub.dataReady.get(), INFINITE) == WAIT_OBJECT_0)
                m_agentStub.answer();
        }).detach();
        if (stands && WaitForSingleObject(stopped, 10000) != WAIT_OBJECT_0)
            TerminateProcess(GetCurrentProcess(), 4);
        patch.reset();
        while (!stands && !hasFailed) // the loader starts a thread, too
            Sleep(1);
        Sleep(stands ? 0 : random() % 20);
        if (kind == 1 || (kind == 2 && stands))
            TerminateThread(pthread_gethandle(threads[0].native_handle()), 0);
        else if (kind == 2)
            for (enough = true; std::thread & thread : threads)
                thread.join();
        if (kind == 2) {
            callAndFail(*plugin);
            delete plugin;
        }
        ExitProcess(0);
    }
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

// As many as VL_ENDS in the environment says.
TEST_F(Lifetime, ProcessEndsWithoutAWordFromUsAndAtAnyMoment)
{
    constexpr unsigned silent = std::size(libraries);
    const unsigned mine = role() ? std::stoul(role()) : 0;
    if (role())
        mine < silent ? endWithoutAWord(libraries[mine]) : end(mine - silent);
    const unsigned count = getenv("VL_ENDS") ? std::stoul(getenv("VL_ENDS")) : stopCount + 15;
    for (unsigned number = 0; number < count; ++number) {
        SCOPED_TRACE(number);
        ReleaseSemaphore(m_agentStub.semaphore.get(), 1, nullptr); // of one that ended inside
        const processResult_t result = playing(std::to_wstring(number)).result();
        EXPECT_EQ(0u, result.status) << result.out << result.err;
        fs::remove(m_traceFile);
    }
    printRuns("process ends", count);
}

} // namespace
