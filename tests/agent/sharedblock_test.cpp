#include "agent/sharedblock.h"

#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "linkfixture.h"
#include "support/tracerecorder.h"

namespace {

constexpr wchar_t name[] = L"vl-test-object";

TEST(SharedBlock, SecondMakerJoinsTheFirstAndKeepsItsSize)
{
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
}

TEST(SharedBlock, FailuresAreTracedWithTheirStatus)
{
    const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, name));
    traceRecorder_t trace;
    EXPECT_EQ(nullptr, createSharedBlock(name, 16).handle);
    EXPECT_EQ(nullptr, openSharedBlock(name).handle);
    failingError = 8;
    const auto map = patched("MapViewOfFile", failing);
    mappedBlock_t block = createSharedBlock(L"vl-test-unmapped", 16);
    EXPECT_TRUE(block.handle && !block.view);
    closeSharedBlock(block);
    texts_t messages = trace.messages();
    ASSERT_EQ(4u, messages.size());
    EXPECT_TRUE(messages[1].starts_with(L"U '`I04`'SA: O:")) << messages[1];
    messages.erase(messages.begin() + 1);
    EXPECT_EQ((texts_t{win32(6) + L"IPC.CreateFileMapping 'vl-test-object' SA=OK",
                       win32(6) + L"IPC.OpenFileMapping 'vl-test-object'",
                       win32(8) + L"IPC.MapViewOfFile"}),
              messages);
}

DWORD mutexAccess = 0;

HANDLE WINAPI openMutex(DWORD access, BOOL, LPCWSTR)
{
    mutexAccess = access;
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

TEST(LinkSemaphore, OpenedOrMadeOrAskedForAsAMutexAfterDeniedAccessOnly)
{
    const std::wstring cantOpen = L"IPC.Failed to open semaphore 'vl-test-object'. BAD.";
    const std::wstring cantMake =
        L"IPC.Failed to create semaphore 'vl-test-object'. OK. Try to open it.";
    const auto mutex = patched("OpenMutexW", openMutex);
    traceRecorder_t trace;
    {
        const CKernelHandle made(openLinkSemaphore(name));
        EXPECT_EQ(texts_t{win32(2) + cantOpen}, trace.messages());
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(made.get(), 0));
        const CKernelHandle opened(openLinkSemaphore(name));
        EXPECT_EQ(texts_t{}, trace.messages());
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(opened.get(), 0));
        EXPECT_TRUE(ReleaseSemaphore(opened.get(), 1, nullptr));
        EXPECT_FALSE(ReleaseSemaphore(opened.get(), 1, nullptr)); // no more than one
    }
    {
        const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, name));
        EXPECT_EQ(nullptr, openLinkSemaphore(name));
        EXPECT_EQ((texts_t{win32(6) + cantOpen, win32(6) + cantMake}), trace.messages());
        EXPECT_EQ(0u, mutexAccess);
    }
    failingError = ERROR_ACCESS_DENIED;
    const auto create = patched("CreateSemaphoreW", failing);
    EXPECT_EQ(nullptr, openLinkSemaphore(name));
    EXPECT_EQ((texts_t{win32(2) + cantOpen, win32(5) + cantMake, win32(2) + cantOpen}),
              trace.messages());
    EXPECT_EQ(0x100002u, std::exchange(mutexAccess, 0u));
}

// The first miss in a process speaks differently, so this runs in a process of its own.
void missBlockAndAgent()
{
    traceRecorder_t trace;
    openSharedBlock(L"nosuch");
    openSharedBlock(L"nosuch");
    const auto find = patched("FindWindowExW", failing);
    for (const DWORD error : {5u, 0u, 2u, 3u}) {
        failingError = error;
        findAgentWindow();
    }
    const std::wstring text = L"IPC.OpenFileMapping 'nosuch' MMF.FILE_NOT_FOUND";
    const texts_t expected = {L"E 0 " + text,
                              L"U '`I04`'" + text,
                              win32(5) + L"No access to VlAgent",
                              L"U '`I04`'VLAgent not running",
                              L"U '`I04`'NoVLAgent",
                              win32(3) + L"No access to VlAgent"};
    std::_Exit(trace.messages() == expected ? 0 : 1);
}

TEST(FirstMiss, IsToldDifferentlyOnceInAProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(missBlockAndAgent(), testing::ExitedWithCode(0), "");
}

} // namespace
