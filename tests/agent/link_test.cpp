#include "agent/transfer.h"
#include "neighbours/linknames.h"
#include "support/agentstub.h"
#include "support/importhooks.h"
#include "support/linkfixture.h"
#include "support/tracerecorder.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

const auto window = reinterpret_cast<HWND>(uintptr_t{0x1122334455667788});

bool isFree(const CKernelHandle& semaphore)
{
    return WaitForSingleObject(semaphore.get(), 0) == WAIT_OBJECT_0 &&
           ReleaseSemaphore(semaphore.get(), 1, nullptr);
}

// Who waits for the answer shows elsewhere: here it is there before the exchange.
TEST(Transfer, AgentSeesTheseBytesUntilAllIsClosedAndNothingOfWhatDoesNotFit)
{
    static std::string closed, payload; // the first letters of the calls that end the exchange
    const std::wstring none = L"|E 0 invalid data to send";
    const std::wstring large =
        win32(ERROR_INSUFFICIENT_BUFFER) + L"IPC.CreateMMF.2VLA.savefile|E 0 _callserverprocess";
    const std::tuple<std::string, std::string, std::wstring> cases[] = {
        {"", "", none},
        {std::string(0x1000 - 16, 'n'), "b", large},
        {"KRS Protected Storage", "S\xC3\xA9/cret", L""},
        {"", std::string(5000, 'b'), L""},
        {std::string(0x1000 - 17, 'n'), "", L""}}; // fills the buffer to its last byte
    const importHooks_t closing(
        GetModuleHandleW(nullptr), {{"UnmapViewOfFile"}, {"CloseHandle"}, {"ReleaseSemaphore"}},
        [](const hookedCall_t& call) {
            if (*call.function == 'U' && closed.find('U') == closed.npos && !payload.empty())
                payload.assign(reinterpret_cast<const char*>(call.argument(0)), payload.size());
            closed += *call.function;
            return false;
        });
    traceRecorder_t trace;
    const agentStub_t agent;
    const blockView_t buffer(L"VLMAX_NIPC_BUFFER");
    for (const auto& [name, body, traced] : cases) {
        SCOPED_TRACE(name.size());
        std::memset(buffer.bytes, 0xEE, 0x1000);
        std::string request(0x1000, '\xEE'); // what follows stays
        if (traced.empty()) {
            request.replace(0, 16, "\x02\0\0\0....\x88\x77\x66\x55\x23\xC1\0\0", 16);
            const DWORD process = GetCurrentProcessId();
            std::memcpy(request.data() + 4, &process, 4);
            request.replace(16, name.size() + 1, name + '\0');
        }
        payload.assign(traced.empty() ? body.size() + 1 : 0, '?');
        closed.clear();
        agent.answer();
        EXPECT_EQ(sendToAgent(window, 0xC123, name, body), traced != none);
        EXPECT_EQ(traced, trace.joined());
        EXPECT_EQ(request, buffer.text(0x1000));
        EXPECT_EQ(traced.empty(), WaitForSingleObject(agent.dataReady.get(), 0) == WAIT_OBJECT_0);
        if (traced.empty()) {
            EXPECT_EQ(body + '\0', payload);
            // The payload, the events, the buffer; the next client comes in when all are gone.
            EXPECT_EQ("UCCCUCRC", closed.substr(closed.find('U'), 8));
        }
        EXPECT_EQ("no block", blockView_t(L"VLTEMPLATE").text(1));
        EXPECT_TRUE(isFree(agent.semaphore));
    }
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

} // namespace
