#include "agent/transfer.h"

#include <cstring>
#include <thread>

#include <gtest/gtest.h>

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

template <DWORD size, DWORD more = 0> HANDLE block(const wchar_t* name)
{
    return CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | more, 0, size, name);
}

HANDLE event(const wchar_t* name)
{
    return CreateEventW(nullptr, FALSE, FALSE, name);
}

HANDLE deniedEvent(const wchar_t* name)
{
    ACL nobody{ACL_REVISION, 0, sizeof nobody, 0, 0};
    SECURITY_DESCRIPTOR descriptor{1, 0, SE_DACL_PRESENT, nullptr, nullptr, nullptr, &nobody};
    SECURITY_ATTRIBUTES attributes{sizeof attributes, &descriptor, FALSE};
    return CreateEventW(&attributes, FALSE, FALSE, name);
}

// Each name that something else has, and a secret's name that doesn't fit, end the exchange with
// these errors: nothing written or signalled, the semaphore free again and no handle kept.
TEST(Transfer, BrokenLinkEndsTheExchangeAndKeepsNothing)
{
    const wchar_t* const mutex = L"VLMAX_NIPC_MUTEX";
    const wchar_t* const acknowledge = L"VLMAX_NIPC_BUFFER_READY";
    const wchar_t* const ready = L"VLMAX_NIPC_DATA_READY";
    const std::wstring noPayload = L"IPC.CreateMMF.2VLA.savefile";
    const std::wstring gaveUp = L"E 0 _callserverprocess";
    const texts_t tooShort = {win32(122) + noPayload, gaveUp};
    const struct {
        const wchar_t* name;
        HANDLE (*take)(const wchar_t*);
        texts_t errors;
        const wchar_t* denied = nullptr;
    } cases[] = {
        {acknowledge, block<100>, {win32(6) + L"no AckEvent"}},
        {acknowledge, block<100>, {win32(5) + L"no AckEvent"}, ready}, // the later open's error
        {ready, block<100>, {win32(6) + L"no ReadyEvent"}},
        {L"VLMAX_NIPC_BUFFER", event, {win32(6) + L"IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER'"}},
        {mutex,
         event,
         {win32(6) + L"IPC.Failed to open semaphore 'VLMAX_NIPC_MUTEX'. BAD.",
          win32(6) + L"IPC.Failed to create semaphore 'VLMAX_NIPC_MUTEX'. OK. Try to open it.",
          win32(6) + L"Create Semaphore failed"}},
        {L"VLTEMPLATE",
         event,
         {win32(6) + L"IPC.CreateFileMapping 'VLTEMPLATE' SA=OK", win32(6) + noPayload, gaveUp}},
        {L"VLTEMPLATE", block<100>, tooShort},
        {L"VLTEMPLATE", block<0x10000, SEC_RESERVE>, tooShort}, // a view that can't be touched
        {nullptr, nullptr, tooShort},
    };
    traceRecorder_t trace;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.name ? c.name : L"") << '/' << c.errors.back());
        {
            const CKernelHandle taken(c.take ? c.take(c.name) : nullptr);
            const CKernelHandle denied(c.denied ? deniedEvent(c.denied) : nullptr);
            const agentObjects_t agent;
            const std::string request = requestBytes(), name(c.name ? 9 : 0x1000 - 16, 'n');
            EXPECT_TRUE(sendToAgent(window, 1, name, std::string(4096, 'b')));
            EXPECT_TRUE(!agent.semaphore || isFree(agent.semaphore));
            EXPECT_NE(WAIT_OBJECT_0, WaitForSingleObject(agent.dataReady.get(), 0));
            EXPECT_EQ(request, requestBytes());
        }
        for (const auto object : {mutex, acknowledge, ready, L"VLMAX_NIPC_BUFFER", L"VLTEMPLATE"})
            EXPECT_TRUE(isGone(object)) << object;
        texts_t errors = trace.messages();
        std::erase_if(errors, [](const auto& text) { return text.starts_with(L"U "); });
        EXPECT_EQ(c.errors, errors);
    }
    EXPECT_FALSE(sendToAgent(window, 1, "", ""));
    EXPECT_EQ(texts_t{L"E 0 invalid data to send"}, trace.messages());
}

int failingWait = 0;

DWORD WINAPI failOneWait(HANDLE handle, DWORD time)
{
    if (--failingWait != 0)
        return WaitForSingleObjectEx(handle, time, FALSE);
    SetLastError(ERROR_ACCESS_DENIED);
    return WAIT_FAILED;
}

TEST(Transfer, FailedWaitsEndTheExchange)
{
    traceRecorder_t trace;
    const agentObjects_t agent;
    const auto wait = patched("WaitForSingleObject", failOneWait);
    WaitForSingleObject(agent.semaphore.get(), 0);
    failingWait = 1;
    EXPECT_TRUE(sendToAgent(window, 1, "n", "b"));
    EXPECT_EQ(texts_t{win32(5) + L"WaitForSingleObject = ffffffff on Semaphore"}, trace.messages());
    EXPECT_FALSE(isFree(agent.semaphore)); // not taken, so not given back
    ReleaseSemaphore(agent.semaphore.get(), 1, nullptr);
    failingWait = 2;
    EXPECT_TRUE(sendToAgent(window, 1, "n", "b"));
    EXPECT_EQ(texts_t{L"E 0 cannot transfer the rest from client"}, trace.messages());
    EXPECT_EQ("no block", blockView_t(L"VLTEMPLATE").text(1));
    EXPECT_TRUE(isFree(agent.semaphore));
}

} // namespace
