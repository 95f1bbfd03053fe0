#include "agent/transfer.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include <sddl.h>
#include <gtest/gtest.h>

#include "linkfixture.h"
#include "support/tracerecorder.h"

namespace {

constexpr DWORD limit = 20000;
const auto window = reinterpret_cast<HWND>(uintptr_t{0x1122334455667788});

std::string blockText(const wchar_t* name, size_t size)
{
    const CKernelHandle handle(OpenFileMappingW(FILE_MAP_READ, FALSE, name));
    const void* view = MapViewOfFile(handle.get(), FILE_MAP_READ, 0, 0, 0);
    if (!view)
        return "no block";
    const std::string text(static_cast<const char*>(view), size);
    UnmapViewOfFile(view);
    return text;
}

bool isFree(const CKernelHandle& semaphore)
{
    return WaitForSingleObject(semaphore.get(), 0) == WAIT_OBJECT_0 &&
           ReleaseSemaphore(semaphore.get(), 1, nullptr);
}

TEST(Transfer, AgentSeesTheseBytesAndTheBlockLivesUntilItAnswers)
{
    const struct {
        std::string name, body;
    } cases[] = {
        {"KRS Protected Storage", "S\xC3\xA9"
                                  "cret"},
        {"KRS Protected Storage", ""},
        {"", "body"},
        {"n", std::string(5000, 'b')},
        {std::string(0x1000 - 17, 'n'), "fills the buffer to its last byte"},
    };
    traceRecorder_t trace;
    const agentObjects_t agent;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.substr(0, 10) + '/' + c.body.substr(0, 10));
        std::memset(agent.view, 0xEE, 0x1000);
        std::thread client([&] { EXPECT_TRUE(sendToAgent(window, 0xC123, c.name, c.body)); });
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(agent.dataReady.get(), limit));
        std::string request("\x02\0\0\0....\x88\x77\x66\x55\x23\xC1\0\0", 16);
        const DWORD process = GetCurrentProcessId();
        std::memcpy(request.data() + 4, &process, 4);
        request += c.name + '\0';
        request.resize(0x1000, '\xEE'); // what lies behind stays
        EXPECT_EQ(request, blockText(L"VLMAX_NIPC_BUFFER", 0x1000));
        EXPECT_EQ(c.body + '\0', blockText(L"VLTEMPLATE", c.body.size() + 1));
        EXPECT_FALSE(isFree(agent.semaphore));
        SetEvent(agent.acknowledge.get());
        client.join();
        EXPECT_EQ("no block", blockText(L"VLTEMPLATE", 1));
        EXPECT_TRUE(isFree(agent.semaphore));
    }
    EXPECT_EQ(texts_t{}, trace.messages());
}

enum instead_t { nothing, anEvent, closedEvent, closedBlock, shortBlock, reservedBlock };

// Takes a name, before the exchange does, with something that doesn't serve.
CKernelHandle take(instead_t instead, const wchar_t* name)
{
    CLocalMemory descriptor; // lets its object be looked at, and no more
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:(A;;RC;;;WD)", 1, descriptor.put(),
                                                         nullptr);
    SECURITY_ATTRIBUTES closed{sizeof closed, descriptor.get(), FALSE};
    const auto security = instead == closedEvent || instead == closedBlock ? &closed : nullptr;
    if (instead == anEvent || instead == closedEvent)
        return CKernelHandle(CreateEventW(security, FALSE, FALSE, name));
    const DWORD protection = PAGE_READWRITE | (instead == reservedBlock ? SEC_RESERVE : 0u);
    const DWORD size = instead == shortBlock ? 100 : 0x10000;
    return CKernelHandle(
        CreateFileMappingW(INVALID_HANDLE_VALUE, security, protection, 0, size, name));
}

// Each thing that is missing or not as it should be ends the exchange with these errors: nothing
// written or signalled, the semaphore free again and no handle kept.
TEST(Transfer, BrokenLinkEndsTheExchangeAndKeepsNothing)
{
    const wchar_t* const mutex = L"VLMAX_NIPC_MUTEX";
    const wchar_t* const ack = L"VLMAX_NIPC_BUFFER_READY";
    const wchar_t* const ready = L"VLMAX_NIPC_DATA_READY";
    const wchar_t* const buffer = L"VLMAX_NIPC_BUFFER";
    const std::wstring semaphore = L"semaphore 'VLMAX_NIPC_MUTEX'.";
    const std::wstring cantOpen = L"IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER'";
    const std::wstring noPayload = L"IPC.CreateMMF.2VLA.savefile";
    const std::wstring gaveUp = L"E 0 _callserverprocess";
    const texts_t tooShort = {win32(122) + noPayload, gaveUp};
    const struct {
        const wchar_t* name; // null: all is there, but the secret's name is too long
        instead_t instead;
        texts_t errors;
    } cases[] = {
        {ack, nothing, {win32(2) + L"no AckEvent"}},
        {ready, nothing, {win32(2) + L"no ReadyEvent"}},
        {ready, closedEvent, {win32(5) + L"no ReadyEvent"}},
        {buffer, anEvent, {win32(6) + cantOpen}},
        {buffer, closedBlock, {win32(5) + cantOpen}},
        {mutex,
         anEvent,
         {win32(6) + L"IPC.Failed to open " + semaphore + L" BAD.",
          win32(6) + L"IPC.Failed to create " + semaphore + L" OK. Try to open it.",
          win32(6) + L"Create Semaphore failed"}},
        {L"VLTEMPLATE",
         anEvent,
         {win32(6) + L"IPC.CreateFileMapping 'VLTEMPLATE' SA=OK", win32(6) + noPayload, gaveUp}},
        {L"VLTEMPLATE", shortBlock, tooShort},
        {L"VLTEMPLATE", reservedBlock, tooShort},
        {nullptr, nothing, tooShort},
    };
    traceRecorder_t trace;
    sendToAgent(window, 1, "n", "b"); // what the first exchange and the first throw keep open
    EXPECT_THROW(throw 1, int);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.name ? c.name : L"long name") << c.instead);
        agentObjects_t agent;
        agent.drop(c.name ? c.name : L"");
        const CKernelHandle taken = c.instead ? take(c.instead, c.name) : CKernelHandle();
        trace.messages();
        const size_t before = openHandles();
        const std::string name(c.name ? 9 : 0x1000 - 16, 'n');
        EXPECT_TRUE(sendToAgent(window, 1, name, std::string(4096, 'b')));
        texts_t errors = trace.messages();
        std::erase_if(errors, [](const auto& text) { return text.starts_with(L"U "); });
        EXPECT_EQ(c.errors, errors);
        EXPECT_EQ(before, openHandles());
        EXPECT_TRUE(!agent.semaphore || isFree(agent.semaphore));
        EXPECT_NE(WAIT_OBJECT_0, WaitForSingleObject(agent.dataReady.get(), 0));
        EXPECT_TRUE(!agent.view || 0x1000 == std::count(agent.view, agent.view + 0x1000, 0xEE));
    }
    const size_t before = openHandles(); // with no object at all, the semaphore is made and goes
    EXPECT_TRUE(sendToAgent(window, 1, "n", ""));
    EXPECT_EQ(before, openHandles());
    trace.messages();
    EXPECT_FALSE(sendToAgent(window, 1, "", ""));
    EXPECT_EQ(texts_t{L"E 0 invalid data to send"}, trace.messages());
}

int waits = 0;

DWORD WINAPI failSecondWait(HANDLE handle, DWORD time)
{
    return ++waits == 2 ? WAIT_FAILED : WaitForSingleObjectEx(handle, time, FALSE);
}

TEST(Transfer, FailedWaitsEndTheExchange)
{
    traceRecorder_t trace;
    agentObjects_t agent;
    {
        waits = 0;
        const auto wait = patched("WaitForSingleObject", failSecondWait);
        EXPECT_TRUE(sendToAgent(window, 1, "n", "b"));
    }
    EXPECT_EQ(texts_t{L"E 0 cannot transfer the rest from client"}, trace.messages());
    EXPECT_EQ("no block", blockText(L"VLTEMPLATE", 1));
    EXPECT_TRUE(isFree(agent.semaphore));

    // A mutex may come in the semaphore's place. One whose thread ended with it isn't taken.
    agent.drop(L"VLMAX_NIPC_MUTEX");
    const CKernelHandle mutex(CreateMutexW(nullptr, FALSE, L"VLMAX_NIPC_MUTEX"));
    std::thread([&] { WaitForSingleObject(mutex.get(), limit); }).join();
    failingError = ERROR_ACCESS_DENIED;
    const auto create = patched("CreateSemaphoreW", failing);
    EXPECT_TRUE(sendToAgent(window, 1, "n", "b"));
    const texts_t messages = trace.messages();
    ASSERT_EQ(3u, messages.size());
    EXPECT_TRUE(messages[2].ends_with(L" WaitForSingleObject = 80 on Semaphore")) << messages[2];
}

} // namespace
