#include "agent/discovery.h"
#include "agent/transfer.h"
#include "neighbours/linknames.h"
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

TEST(Transfer, AgentSeesTheseBytesAndTheBlockLivesUntilItAnswers)
{
    static std::string closed; // the first letters of the calls that end the exchange
    const std::pair<std::string, std::string> cases[] = {
        {"KRS Protected Storage", "S\xC3\xA9/cret"},
        {"", std::string(5000, 'b')},
        {std::string(0x1000 - 17, 'n'), ""}}; // fills the buffer to its last byte
    const importHooks_t closing(GetModuleHandleW(nullptr),
                                {{"UnmapViewOfFile"}, {"CloseHandle"}, {"ReleaseSemaphore"}},
                                [](const hookedCall_t& call) {
                                    closed += *call.function;
                                    return false;
                                });
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
        request.resize(0x1000, '\xEE'); // what follows stays
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

TEST(Transfer, NothingIsSentOfAnEmptySecretOrWithATooLongName)
{
    traceRecorder_t trace;
    const agentStub_t agent;
    agent.answer(); // whoever sends all the same doesn't wait
    EXPECT_FALSE(sendToAgent(window, 1, "", ""));
    EXPECT_TRUE(sendToAgent(window, 1, std::string(0x1000 - 16, 'n'), "b"));
    EXPECT_EQ(L"|E 0 invalid data to send" + win32(122) +
                  L"IPC.CreateMMF.2VLA.savefile|E 0 _callserverprocess",
              trace.joined());
    EXPECT_TRUE(isFree(agent.semaphore));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(agent.dataReady.get(), 0));
    EXPECT_EQ(std::string(16, '\0'), blockView_t(L"VLMAX_NIPC_BUFFER").text(16));
}

TEST(LinkSemaphore, IsMadeForOneClientOrIsTheMutexOfThatName)
{
    const CKernelHandle made = openLinkSemaphore(L"vl-test");
    EXPECT_TRUE(isFree(made) && isFree(openLinkSemaphore(L"vl-test")));
    EXPECT_FALSE(ReleaseSemaphore(made.get(), 1, nullptr)); // no more than one
    const importPatch_t create("CreateSemaphoreW", failing);
    failingError = ERROR_ACCESS_DENIED; // after which a mutex is asked for
    const CKernelHandle mutex(CreateMutexW(nullptr, FALSE, L"vl-test-mutex"));
    EXPECT_TRUE(openLinkSemaphore(L"vl-test-mutex"));
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
