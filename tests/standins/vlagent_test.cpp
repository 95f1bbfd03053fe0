#include "agent/discovery.h"
#include "agent/transfer.h"
#include "common/module.h"
#include "support/agentstub.h"
#include "support/linkfixture.h"
#include "support/process.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

TEST(Agent, JournalsWhatItStoresAndWhyItRefusesBeforeItAnswers)
{
    const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vl-ready"));
    std::filesystem::path program = moduleFileName(nullptr);
    const process_t agent(program.replace_filename(L"vlagent.exe"),
                          LR"(--ready-event vl-ready --journal C:\vlagent.json)");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), limit));
    const UINT done = restore2DoneMessage();
    const std::tuple<const char*, UINT, const char*, const char*> cases[] = {
        {"c3e66f1f3e4922891fbf81f6143f4094ca5d2073f709033c047ee62981e6fcc8\",\"outcome\":\"stored",
         done, "k\xC3\xA4pt", "S\xC3\xA9/cret"},
        {"reason\":\"unknown message", restoreDoneMessage(), "refused", "b"},
        {"reason\":\"payload is not UTF-8", done, "refused", "\xC3"},
        {"reason\":\"value without a name", done, "", "b"}};
    const CKernelHandle kept(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                0x1000, L"VLTEMPLATE"));
    for (const auto& [journalled, message, name, body] : cases) {
        EXPECT_TRUE(sendToAgent(findAgentWindow(), message, name, body));
        EXPECT_NE(std::string::npos, fileBytes("C:\\vlagent.json").find(journalled)) << journalled;
        EXPECT_EQ(std::string(8, '\0'), blockView_t(L"VLTEMPLATE").text(8)); // wiped
    }
    PostMessageW(findAgentWindow(), WM_CLOSE, 0, 0);
    EXPECT_EQ(0u, agent.result().status);
    const std::string journal = fileBytes("C:\\vlagent.json");
    EXPECT_NE(std::string::npos, journal.find("\"name\":\"k\xC3\xA4pt\""));
    constexpr std::string_view passedOn = "\"event\":\"message\"";
    const size_t first = journal.find(passedOn);
    EXPECT_NE(std::string::npos, first);
    EXPECT_EQ(std::string::npos, journal.find(passedOn, first + 1)); // what is refused is not
}

// The earlier one took the signal, and is no more.
TEST(Agent, AnswersAClientThatAnEarlierOneLeft)
{
    const agentStub_t earlier;
    const CKernelHandle answered(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread client([&] {
        sendToAgent(earlier.window, restore2DoneMessage(), "left", "b");
        SetEvent(answered.get());
    });
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(earlier.dataReady.get(), limit));
    std::filesystem::path program = moduleFileName(nullptr);
    const process_t agent(program.replace_filename(L"vlagent.exe"));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(answered.get(), limit));
    earlier.answer();
    client.join();
    agent.kill();
}

} // namespace
