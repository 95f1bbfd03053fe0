#include "agent/sharedblock.h"

#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "linkfixture.h"
#include "support/tracerecorder.h"

namespace {

using texts_t = std::vector<std::wstring>;
constexpr wchar_t name[] = L"vl-test-object";

DWORD mutexAccess = 0;
DWORD windowError = 0;

HANDLE WINAPI openMutex(DWORD access, BOOL, LPCWSTR)
{
    mutexAccess = access;
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

HANDLE WINAPI createSemaphoreDenied(SECURITY_ATTRIBUTES*, LONG, LONG, LPCWSTR)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

HWND WINAPI findNoWindow(HWND, HWND, LPCWSTR, LPCWSTR)
{
    if (windowError)
        SetLastError(windowError);
    return nullptr;
}

LPVOID WINAPI mapNothing(HANDLE, DWORD, DWORD, DWORD, SIZE_T)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

template <class Function> importPatch_t patch(const char* function, Function* replacement)
{
    return importPatch_t(GetModuleHandleW(nullptr), function, reinterpret_cast<void*>(replacement));
}

TEST(SharedBlock, SecondMakerJoinsTheFirst)
{
    traceRecorder_t trace;
    mappedBlock_t first = createSharedBlock(name, 100);
    mappedBlock_t second = createSharedBlock(name, 9000);
    mappedBlock_t third = openSharedBlock(name);
    ASSERT_TRUE(first.view && second.view && third.view);
    static_cast<char*>(first.view)[99] = 'x';
    EXPECT_EQ('x', static_cast<char*>(second.view)[99]);
    EXPECT_EQ('x', static_cast<char*>(third.view)[99]);
    EXPECT_EQ(4096u, sharedBlockSize(second.view));
    for (mappedBlock_t* block : {&first, &second, &third, &first}) {
        closeSharedBlock(*block);
        EXPECT_TRUE(!block->handle && !block->view);
    }
    EXPECT_EQ(texts_t{}, trace.messages());
}

TEST(SharedBlock, FailuresAreTracedWithTheirStatus)
{
    const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, name));
    traceRecorder_t trace;
    EXPECT_EQ(nullptr, createSharedBlock(name, 16).handle);
    const texts_t made = trace.messages();
    ASSERT_EQ(2u, made.size());
    EXPECT_EQ(win32(6) + L"IPC.CreateFileMapping 'vl-test-object' SA=OK", made[0]);
    EXPECT_TRUE(made[1].starts_with(L"U '`I04`'SA: O:")) << made[1];
    EXPECT_EQ(nullptr, openSharedBlock(name).handle);
    EXPECT_EQ(texts_t{win32(6) + L"IPC.OpenFileMapping 'vl-test-object'"}, trace.messages());

    const auto map = patch("MapViewOfFile", mapNothing);
    mappedBlock_t block = createSharedBlock(L"vl-test-unmapped", 16);
    EXPECT_TRUE(block.handle && !block.view);
    EXPECT_EQ(texts_t{win32(8) + L"IPC.MapViewOfFile"}, trace.messages());
    closeSharedBlock(block);
}

TEST(LinkSemaphore, MadeWhenMissingOpenedWhenThere)
{
    traceRecorder_t trace;
    const CKernelHandle made(openLinkSemaphore(name));
    EXPECT_EQ(texts_t{win32(2) + L"IPC.Failed to open semaphore 'vl-test-object'. BAD."},
              trace.messages());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(made.get(), 0));
    const CKernelHandle opened(openLinkSemaphore(name));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(opened.get(), 0));
    EXPECT_TRUE(ReleaseSemaphore(opened.get(), 1, nullptr));
    EXPECT_FALSE(ReleaseSemaphore(opened.get(), 1, nullptr)); // no more than one
    EXPECT_EQ(texts_t{}, trace.messages());
}

TEST(LinkSemaphore, SecondOpenAsksForAMutexAfterDeniedAccessOnly)
{
    const std::wstring cantOpen = L"IPC.Failed to open semaphore 'vl-test-object'. BAD.";
    const std::wstring cantMake =
        L"IPC.Failed to create semaphore 'vl-test-object'. OK. Try to open it.";
    const auto mutex = patch("OpenMutexW", openMutex);
    traceRecorder_t trace;
    {
        const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, name));
        EXPECT_EQ(nullptr, openLinkSemaphore(name));
        EXPECT_EQ((texts_t{win32(6) + cantOpen, win32(6) + cantMake}), trace.messages());
        EXPECT_EQ(0u, mutexAccess);
    }
    const auto create = patch("CreateSemaphoreW", createSemaphoreDenied);
    EXPECT_EQ(nullptr, openLinkSemaphore(name));
    EXPECT_EQ((texts_t{win32(2) + cantOpen, win32(5) + cantMake, win32(2) + cantOpen}),
              trace.messages());
    EXPECT_EQ(0x100002u, mutexAccess);
}

// The first miss in a process speaks differently, so each runs in a process of its own.
template <class Body> void expectMessages(const texts_t& expected, Body body)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            traceRecorder_t trace;
            body();
            const texts_t messages = trace.messages();
            for (const auto& text : messages)
                std::fprintf(stderr, "%ls\n", text.c_str());
            std::_Exit(messages == expected ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FirstMiss, BlockIsAnErrorOnlyOnce)
{
    const std::wstring text = L"IPC.OpenFileMapping 'nosuch' MMF.FILE_NOT_FOUND";
    expectMessages({L"E 0 " + text, L"U '`I04`'" + text, L"U '`I04`'" + text}, [] {
        for (int i = 0; i < 3; ++i)
            openSharedBlock(L"nosuch");
    });
}

TEST(FirstMiss, AgentIsToldInFullOnlyOnceAndErrorsAreNotMisses)
{
    expectMessages({win32(5) + L"No access to VlAgent", L"U '`I04`'VLAgent not running",
                    L"U '`I04`'NoVLAgent", win32(3) + L"No access to VlAgent",
                    L"U '`I04`'NoVLAgent"},
                   [] {
                       const auto find = patch("FindWindowExW", findNoWindow);
                       for (const DWORD error : {5u, 0u, 2u, 3u, 0u}) {
                           windowError = error;
                           SetLastError(ERROR_GEN_FAILURE); // an old error isn't the search's
                           findAgentWindow();
                       }
                   });
}

} // namespace
