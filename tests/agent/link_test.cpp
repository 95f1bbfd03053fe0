#include "agent/transfer.h"

#include <cstring>
#include <thread>

#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "linkfixture.h"
#include "support/tracerecorder.h"

namespace {

const auto window = reinterpret_cast<HWND>(uintptr_t{0x1122334455667788});

std::string requestBytes()
{
    return blockView_t(L"VLMAX_NIPC_BUFFER").text(0x1000);
}

bool isFree(const CKernelHandle& semaphore)
{
    return WaitForSingleObject(semaphore.get(), 0) == WAIT_OBJECT_0 &&
           ReleaseSemaphore(semaphore.get(), 1, nullptr);
}

bool isGone(const wchar_t* name)
{
    const CKernelHandle own(CreateEventW(nullptr, FALSE, FALSE, name));
    return own && GetLastError() != ERROR_ALREADY_EXISTS;
}

TEST(Transfer, AgentSeesTheseBytesAndTheBlockLivesUntilItAnswers)
{
    const struct {
        std::string name, body;
    } cases[] = {
        {"KRS Protected Storage", "S\xC3\xA9/cret"},
        {"KRS Protected Storage", ""},
        {"", "body"},
        {"n", std::string(5000, 'b')},
        {std::string(0x1000 - 17, 'n'), "fills the buffer to its last byte"},
    };
    traceRecorder_t trace;
    const agentObjects_t agent;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.substr(0, 10) + '/' + c.body.substr(0, 10));
        std::memset(blockView_t(L"VLMAX_NIPC_BUFFER").bytes, 0xEE, 0x1000);
        std::thread client([&] { EXPECT_TRUE(sendToAgent(window, 0xC123, c.name, c.body)); });
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(agent.dataReady.get(), limit));
        std::string request("\x02\0\0\0....\x88\x77\x66\x55\x23\xC1\0\0", 16);
        const DWORD process = GetCurrentProcessId();
        std::memcpy(request.data() + 4, &process, 4);
        request += c.name + '\0';
        request.resize(0x1000, '\xEE'); // what lies behind stays
        EXPECT_EQ(request, requestBytes());
        EXPECT_EQ(c.body + '\0', blockView_t(L"VLTEMPLATE").text(c.body.size() + 1));
        EXPECT_FALSE(isFree(agent.semaphore));
        SetEvent(agent.acknowledge.get());
        client.join();
        EXPECT_EQ("no block", blockView_t(L"VLTEMPLATE").text(1));
        EXPECT_TRUE(isFree(agent.semaphore));
    }
    EXPECT_EQ(texts_t{}, trace.messages());
}

int failingWait = 0;

DWORD WINAPI failOneWait(HANDLE handle, DWORD time)
{
    if (--failingWait != 0)
        return WaitForSingleObjectEx(handle, time, FALSE);
    SetLastError(ERROR_ACCESS_DENIED);
    return WAIT_FAILED;
}

// What is missing, not as it should be or too long ends the exchange with these errors: nothing
// written or signalled, the semaphore free again and no handle kept.
TEST(Transfer, BrokenLinkEndsTheExchangeAndKeepsNothing)
{
    const wchar_t* const mutex = L"VLMAX_NIPC_MUTEX";
    const wchar_t* const acknowledge = L"VLMAX_NIPC_BUFFER_READY";
    const wchar_t* const ready = L"VLMAX_NIPC_DATA_READY";
    const wchar_t* const buffer = L"VLMAX_NIPC_BUFFER";
    const wchar_t* const payload = L"VLTEMPLATE";
    const std::wstring wrong = win32(6), noPayload = L"IPC.CreateMMF.2VLA.savefile";
    const std::wstring gaveUp = L"E 0 _callserverprocess";
    const texts_t tooShort = {win32(122) + noPayload, gaveUp};
    const struct {
        texts_t errors;
        const wchar_t* taken = nullptr; // this name has a mutex, or a block of so many bytes
        DWORD size = 0, more = 0;
        bool acknowledges = true; // false: the agent lacks its acknowledge event
        int wait = 0;             // the number of the wait that fails
        size_t nameSize = 9;
    } cases[] = {
        {{wrong + L"no AckEvent"}, acknowledge},
        {{wrong + L"no AckEvent"}, ready, 0, 0, false}, // the later open's error
        {{wrong + L"no ReadyEvent"}, ready},
        {{wrong + L"IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER'"}, buffer},
        {{wrong + L"IPC.Failed to open semaphore 'VLMAX_NIPC_MUTEX'. BAD.",
          wrong + L"IPC.Failed to create semaphore 'VLMAX_NIPC_MUTEX'. OK. Try to open it.",
          wrong + L"Create Semaphore failed"},
         mutex},
        {{wrong + L"IPC.CreateFileMapping 'VLTEMPLATE' SA=OK", wrong + noPayload, gaveUp}, payload},
        {tooShort, payload, 100},
        {tooShort, payload, 0x10000, SEC_RESERVE}, // a view that can't be touched
        {tooShort, nullptr, 0, 0, true, 0, 0x1000 - 16},
        {{win32(5) + L"WaitForSingleObject = ffffffff on Semaphore"}, nullptr, 0, 0, true, 1},
        {{L"E 0 cannot transfer the rest from client"}, nullptr, 0, 0, true, 2},
    };
    const auto wait = patched("WaitForSingleObject", failOneWait);
    traceRecorder_t trace;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.taken ? c.taken : L"") << '/' << c.errors.back());
        {
            const CKernelHandle taken(c.size    ? CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                                     PAGE_READWRITE | c.more, 0,
                                                                     c.size, c.taken)
                                      : c.taken ? CreateMutexW(nullptr, FALSE, c.taken)
                                                : nullptr);
            agentObjects_t agent;
            if (!c.acknowledges)
                agent.acknowledge.reset();
            if (c.wait == 1) // another client's, so that giving it back would show
                WaitForSingleObject(agent.semaphore.get(), 0);
            const std::string request = requestBytes();
            failingWait = c.wait;
            EXPECT_TRUE(
                sendToAgent(window, 1, std::string(c.nameSize, 'n'), std::string(4096, 'b')));
            EXPECT_EQ(agent.semaphore && c.wait != 1, isFree(agent.semaphore));
            EXPECT_EQ(c.wait == 2, WaitForSingleObject(agent.dataReady.get(), 0) == WAIT_OBJECT_0);
            EXPECT_EQ(c.wait != 2, requestBytes() == request);
        }
        for (const auto object : {mutex, acknowledge, ready, buffer, payload})
            EXPECT_TRUE(isGone(object)) << object;
        texts_t errors = trace.messages();
        std::erase_if(errors, [](const auto& text) { return text.starts_with(L"U "); });
        EXPECT_EQ(c.errors, errors);
    }
    EXPECT_FALSE(sendToAgent(window, 1, "", ""));
    EXPECT_EQ(texts_t{L"E 0 invalid data to send"}, trace.messages());
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
    CKernelHandle made(openLinkSemaphore(L"vl-test"));
    EXPECT_EQ(texts_t{win32(2) + cantOpen}, trace.messages());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(made.get(), 0));
    CKernelHandle opened(openLinkSemaphore(L"vl-test"));
    EXPECT_EQ(texts_t{}, trace.messages());
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(opened.get(), 0));
    EXPECT_TRUE(ReleaseSemaphore(opened.get(), 1, nullptr));
    EXPECT_FALSE(ReleaseSemaphore(opened.get(), 1, nullptr)); // no more than one
    made.reset();
    opened.reset();
    const auto mutex = patched("OpenMutexW", openMutex);
    const auto create = patched("CreateSemaphoreW", failing);
    failingError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(nullptr, openLinkSemaphore(L"vl-test"));
    EXPECT_EQ((texts_t{win32(2) + cantOpen, win32(5) + cantMake, win32(6) + cantOpen}),
              trace.messages());
    EXPECT_EQ(0x100002u, mutexAccess);
}

// The first miss in a process speaks differently, so this runs in a process of its own.
void missBlockAndAgent()
{
    traceRecorder_t trace;
    openSharedBlock(L"nosuch");
    openSharedBlock(L"nosuch");
    SetLastError(ERROR_ACCESS_DENIED); // a search that finds nothing leaves it as it is
    findAgentWindow();
    const auto find = patched("FindWindowExW", failing);
    for (const DWORD error : {5u, 0u, 2u, 3u}) {
        failingError = error;
        findAgentWindow();
    }
    const std::wstring text = L"IPC.OpenFileMapping 'nosuch' MMF.FILE_NOT_FOUND";
    const std::wstring noAccess = L"No access to VlAgent";
    const std::wstring notRunning = L"U '`I04`'VLAgent not running", none = L"U '`I04`'NoVLAgent";
    const texts_t expected = {
        L"E 0 " + text, L"U '`I04`'" + text, notRunning, win32(5) + noAccess, none,
        none,           win32(3) + noAccess};
    std::_Exit(trace.messages() == expected ? 0 : 1);
}

TEST(FirstMiss, IsToldDifferentlyOnceInAProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(missBlockAndAgent(), testing::ExitedWithCode(0), "");
}

} // namespace
