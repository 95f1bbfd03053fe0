#include "agent/sharedblock.h"

#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "linkfixture.h"
#include "support/tracerecorder.h"

namespace {

constexpr wchar_t name[] = L"vl-test";

TEST(SharedBlock, SecondMakerJoinsTheFirstAndKeepsItsSize)
{
    mappedBlock_t first = createSharedBlock(name, 100), second = createSharedBlock(name, 9000);
    ASSERT_TRUE(first.view && second.view);
    static_cast<char*>(first.view)[99] = 'x';
    EXPECT_EQ('x', static_cast<char*>(second.view)[99]);
    EXPECT_EQ(4096u, sharedBlockSize(second.view));
    for (mappedBlock_t* block : {&first, &second, &first}) {
        closeSharedBlock(*block);
        EXPECT_TRUE(!block->handle && !block->view);
    }
}

TEST(SharedBlock, FailedMakingTellsTheSecurityAndFailedMappingLeavesTheHandle)
{
    const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, name));
    traceRecorder_t trace;
    EXPECT_EQ(nullptr, createSharedBlock(name, 16).handle);
    EXPECT_EQ(0u, trace.messages().back().find(L"U '`I04`'SA: O:"));
    failingError = 8;
    const auto map = patched("MapViewOfFile", failing);
    mappedBlock_t block = createSharedBlock(L"vl-test-unmapped", 16);
    EXPECT_TRUE(block.handle && !block.view);
    EXPECT_EQ(texts_t{win32(8) + L"IPC.MapViewOfFile"}, trace.messages());
    closeSharedBlock(block);
}

DWORD mutexAccess = 0;

HANDLE WINAPI openMutex(DWORD access, BOOL, LPCWSTR)
{
    mutexAccess = access;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

TEST(LinkSemaphore, OpenedOrMadeOrAskedForAsAMutexAfterDeniedAccessOnly)
{
    const std::wstring cantOpen = L"IPC.Failed to open semaphore 'vl-test'. BAD.";
    const std::wstring cantMake = L"IPC.Failed to create semaphore 'vl-test'. OK. Try to open it.";
    traceRecorder_t trace;
    CKernelHandle made(openLinkSemaphore(name));
    EXPECT_EQ(texts_t{win32(2) + cantOpen}, trace.messages());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(made.get(), 0));
    CKernelHandle opened(openLinkSemaphore(name));
    EXPECT_EQ(texts_t{}, trace.messages());
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(opened.get(), 0));
    EXPECT_TRUE(ReleaseSemaphore(opened.get(), 1, nullptr));
    EXPECT_FALSE(ReleaseSemaphore(opened.get(), 1, nullptr)); // no more than one
    made.reset();
    opened.reset();
    const auto mutex = patched("OpenMutexW", openMutex);
    const auto create = patched("CreateSemaphoreW", failing);
    texts_t expected = {win32(2) + cantOpen, win32(failingError = 8) + cantMake};
    EXPECT_EQ(nullptr, openLinkSemaphore(name));
    EXPECT_EQ(expected, trace.messages());
    EXPECT_EQ(0u, mutexAccess);
    expected = {win32(2) + cantOpen, win32(failingError = 5) + cantMake, win32(6) + cantOpen};
    EXPECT_EQ(nullptr, openLinkSemaphore(name));
    EXPECT_EQ(expected, trace.messages());
    EXPECT_EQ(0x100002u, mutexAccess);
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
    const std::wstring noAccess = L"No access to VlAgent";
    const texts_t expected = {L"E 0 " + text,        L"U '`I04`'" + text,
                              win32(5) + noAccess,   L"U '`I04`'VLAgent not running",
                              L"U '`I04`'NoVLAgent", win32(3) + noAccess};
    std::_Exit(trace.messages() == expected ? 0 : 1);
}

TEST(FirstMiss, IsToldDifferentlyOnceInAProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(missBlockAndAgent(), testing::ExitedWithCode(0), "");
}

} // namespace
