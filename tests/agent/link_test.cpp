#include "agent/discovery.h"
#include "agent/transfer.h"
#include "neighbours/linknames.h"
#include "security/objectsecurity.h"
#include "support/agentstub.h"
#include "support/freshprocess.h"
#include "support/importhooks.h"
#include "support/linkfixture.h"
#include "support/tracerecorder.h"

#include <cstring>
#include <thread>

#include <gtest/gtest.h>

namespace {

const auto window = reinterpret_cast<HWND>(uintptr_t{0x1122334455667788});

bool isFree(const CKernelHandle& semaphore)
{
    return WaitForSingleObject(semaphore.get(), 0) == WAIT_OBJECT_0 &&
           ReleaseSemaphore(semaphore.get(), 1, nullptr);
}

SIZE_T WINAPI queryUncached(LPCVOID at, PMEMORY_BASIC_INFORMATION region, SIZE_T size)
{
    const SIZE_T filled = VirtualQueryEx(GetCurrentProcess(), at, region, size);
    region->Protect |= PAGE_NOCACHE;
    return filled;
}

std::string closed; // the first letters of the calls that end the exchange

bool noteClosing(const hookedCall_t& call)
{
    closed += *call.function;
    return false;
}

TEST(Transfer, AgentSeesTheseBytesAndTheBlockLivesUntilItAnswers)
{
    const importPatch_t query("VirtualQuery", queryUncached);
    const std::pair<std::string, std::string> cases[] = {
        {"KRS Protected Storage", "S\xC3\xA9/cret"},
        {"", std::string(5000, 'b')},
        {std::string(0x1000 - 17, 'n'), ""}}; // fills the buffer to its last byte
    const importHooks_t closing(GetModuleHandleW(nullptr),
                                {{"UnmapViewOfFile"}, {"CloseHandle"}, {"ReleaseSemaphore"}},
                                noteClosing);
    traceRecorder_t trace;
    const agentStub_t agent;
    const blockView_t buffer(L"VLMAX_NIPC_BUFFER");
    for (const auto& [first, second] : cases) {
        const std::string &name = first, &body = second; // bindings stay out of lambdas for clang
        std::memset(buffer.bytes, 0xEE, 0x1000);
        std::thread client([&] { EXPECT_TRUE(sendToAgent(window, 0xC123, name, body)); });
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(agent.dataReady.get(), limit));
        std::string request("\x02\0\0\0....\x88\x77\x66\x55\x23\xC1\0\0", 16);
        const DWORD process = GetCurrentProcessId();
        std::memcpy(request.data() + 4, &process, 4);
        request += name + '\0';
        request.resize(0x1000, '\xEE'); // what lies behind stays
        EXPECT_EQ(request, buffer.text(0x1000));
        EXPECT_EQ(body + '\0', blockView_t(L"VLTEMPLATE").text(body.size() + 1));
        EXPECT_FALSE(isFree(agent.semaphore));
        closed.clear();
        SetEvent(agent.acknowledge.get());
        client.join();
        // The payload, the events, the buffer; the next client comes in when all are gone.
        EXPECT_EQ("UCCCUCRC", closed.substr(0, 8));
        EXPECT_EQ("no block", blockView_t(L"VLTEMPLATE").text(1));
        EXPECT_TRUE(isFree(agent.semaphore));
    }
    EXPECT_EQ(L"", trace.joined());
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
// written or signalled, and the semaphore free again.
TEST(Transfer, BrokenLinkEndsTheExchange)
{
    const auto& [mutex, acknowledge, ready, buffer, bytes, payload, more, most] = linkSets[0];
    const std::wstring wrong = win32(6), tooShort = win32(122);
    sharedObjectSecurity_t asked;
    const SECURITY_DESCRIPTOR* descriptor =
        initMappingSecurity(asked).descriptor.GetPSECURITY_DESCRIPTOR();
    const std::wstring note = L"|U '`I04`'SA: " + securityToString(descriptor);
    const std::wstring noPayload = L"IPC.CreateMMF.2VLA.savefile|E 0 _callserverprocess";
    const struct {
        std::wstring errors;
        const wchar_t* taken = nullptr; // this name has a mutex, or a block of so many bytes
        DWORD size = 0;
        int wait = 0; // the number of the wait that fails
        size_t nameSize = 9;
    } cases[] = {
        {wrong + L"no AckEvent", acknowledge},
        {wrong + L"no ReadyEvent", ready},
        {wrong + L"IPC.OpenFileMapping 'VLMAX_NIPC_BUFFER'", buffer},
        {wrong + L"IPC.Failed to open semaphore 'VLMAX_NIPC_MUTEX'. BAD." + wrong +
             L"IPC.Failed to create semaphore 'VLMAX_NIPC_MUTEX'. OK. Try to open it." + wrong +
             L"Create Semaphore failed",
         mutex},
        {wrong + L"IPC.CreateFileMapping 'VLTEMPLATE' SA=OK" + note + wrong + noPayload, payload},
        {tooShort + noPayload, payload, 100},
        {tooShort + noPayload, nullptr, 0, 0, 0x1000 - 16},
        {win32(5) + L"WaitForSingleObject = ffffffff on Semaphore", nullptr, 0, 1},
        {L"|E 0 cannot transfer the rest from client", nullptr, 0, 2}};
    const importPatch_t wait("WaitForSingleObject", failOneWait);
    traceRecorder_t trace;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.errors);
        {
            const CKernelHandle taken(c.size
                                          ? CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                               PAGE_READWRITE, 0, c.size, c.taken)
                                          : CreateMutexW(nullptr, FALSE, c.taken));
            const CKernelHandle both( // with the one event the other, of which nothing is said
                CreateMutexW(nullptr, FALSE, c.taken == acknowledge ? ready : nullptr));
            const agentStub_t agent;
            if (c.wait == 1) // another client's, so that giving it back would show
                WaitForSingleObject(agent.semaphore.get(), 0);
            const std::string before = blockView_t(buffer).text(16), name(c.nameSize, 'n');
            failingWait = c.wait;
            EXPECT_TRUE(sendToAgent(window, 1, name, std::string(4096, 'b')));
            EXPECT_EQ(agent.semaphore && c.wait != 1, isFree(agent.semaphore));
            EXPECT_EQ(c.wait == 2, WaitForSingleObject(agent.dataReady.get(), 0) == WAIT_OBJECT_0);
            EXPECT_EQ(c.wait != 2, blockView_t(buffer).text(16) == before);
        }
        EXPECT_EQ(c.errors, trace.joined());
    }
    EXPECT_FALSE(sendToAgent(window, 1, "", ""));
    EXPECT_EQ(L"|E 0 invalid data to send", trace.joined());
}

TEST(LinkSemaphore, OpenedOrMadeOrAskedForAsAMutexAfterDeniedAccessOnly)
{
    const std::wstring cantOpen = L"IPC.Failed to open semaphore 'vl-test'. BAD.";
    traceRecorder_t trace;
    {
        const CKernelHandle made = openLinkSemaphore(L"vl-test");
        const CKernelHandle opened = openLinkSemaphore(L"vl-test");
        EXPECT_TRUE(isFree(made) && isFree(opened));
        EXPECT_FALSE(ReleaseSemaphore(opened.get(), 1, nullptr)); // no more than one
    }
    const importPatch_t create("CreateSemaphoreW", failing);
    failingError = ERROR_ACCESS_DENIED;
    const CKernelHandle mutex(CreateMutexW(nullptr, FALSE, L"vl-test"));
    EXPECT_TRUE(openLinkSemaphore(L"vl-test"));
    EXPECT_EQ(win32(2) + cantOpen + win32(6) + cantOpen + win32(5) +
                  L"IPC.Failed to create semaphore 'vl-test'. OK. Try to open it.",
              trace.joined());
}

TEST(FirstMiss, IsAnErrorOnceInAProcess)
{
    const std::wstring text = L"IPC.OpenFileMapping 'nosuch' MMF.FILE_NOT_FOUND";
    IN_FRESH_PROCESS({
        traceRecorder_t trace;
        openSharedBlock(L"nosuch");
        openSharedBlock(L"nosuch");
        const importPatch_t find("FindWindowExW", failing);
        for (const DWORD error : {5u, 0u, 2u, 3u}) { // the second leaves the last error as it is
            failingError = error;
            findAgentWindow();
        }
        EXPECT_EQ(L"|E 0 " + text + L"|U '`I04`'" + text + win32(5) +
                      L"No access to VlAgent|U '`I04`'VLAgent not running|U '`I04`'NoVLAgent" +
                      win32(3) + L"No access to VlAgent",
                  trace.joined());
    });
}

} // namespace
