#include <array>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

#include <windows.h>
#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "agent/transfer.h"
#include "linkfixture.h"
#include "vlfpapi/vlfpapi.h"

namespace {

constexpr DWORD limit = 20000;

DWORD exitCode(const CKernelHandle& process)
{
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.get(), limit));
    GetExitCodeProcess(process.get(), &code);
    return code;
}

// Agent runs vlagent.exe, up before each test and gone after it, with a journal of its own.
class Agent : public testing::Test
{
protected:
    void SetUp() override
    {
        std::array<wchar_t, 4096> text{};
        GetModuleFileNameW(nullptr, text.data(), static_cast<DWORD>(text.size()));
        m_folder = text.data();
        m_folder.resize(m_folder.find_last_of(L'\\') + 1);
        GetTempFileNameW(L".", L"vla", 0, text.data());
        m_file = text.data();
        m_ready.reset(CreateEventW(nullptr, FALSE, FALSE, L"vl-test-ready"));
        start(L"");
    }

    void TearDown() override
    {
        if (WaitForSingleObject(m_agent.get(), 0) != WAIT_OBJECT_0)
            quit();
        DeleteFileW(m_file.c_str());
    }

    CKernelHandle run(const std::wstring& arguments)
    {
        std::wstring line = L"\"" + m_folder + L"vlagent.exe\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   nullptr, &startup, &process));
        const CKernelHandle thread(process.hThread);
        return CKernelHandle(process.hProcess);
    }

    void start(const std::wstring& more)
    {
        m_agent = run(L"--ready-event vl-test-ready --journal \"" + m_file + L"\" " + more);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(m_ready.get(), limit));
    }

    void quit()
    {
        EXPECT_EQ(0u, exitCode(run(L"--quit")));
        EXPECT_EQ(0u, exitCode(m_agent));
        expectInJournal("\"event\":\"ended\"");
    }

    void expectInJournal(const std::string& text, bool expected = true) const
    {
        std::ostringstream journal;
        journal << std::ifstream(m_file.c_str()).rdbuf();
        EXPECT_EQ(expected, journal.str().find(text) != std::string::npos) << text << "\nand\n"
                                                                           << journal.str();
    }

    // Takes the secret "vl-test secret" out of this user's store; "none" when there is none.
    std::wstring takeSecret()
    {
        const CLoadedModule store(LoadLibraryW((m_folder + L"VLFPApi.dll").c_str()));
        const auto function = [&](const char* name) {
            return reinterpret_cast<void*>(GetProcAddress(store.get(), name));
        };
        std::array<wchar_t, 100> user{}, machine{}, value{};
        DWORD userSize = user.size(), machineSize = machine.size();
        GetUserNameW(user.data(), &userSize);
        GetComputerNameW(machine.data(), &machineSize);
        const std::wstring qualified = std::wstring(machine.data()) + L'\\' + user.data();
        uint32_t bytes = sizeof value;
        const auto read = reinterpret_cast<decltype(&VLFPReadSecret)>(function("VLFPReadSecret"));
        if (read(qualified.c_str(), 3, L"vl-test secret", reinterpret_cast<BYTE*>(value.data()),
                 &bytes) != 0)
            return L"none";
        reinterpret_cast<decltype(&VLFPDeleteSecret)>(function("VLFPDeleteSecret"))(
            qualified.c_str(), 3, L"vl-test secret");
        return {value.data(), bytes / sizeof(wchar_t)};
    }

    std::wstring m_folder, m_file;
    CKernelHandle m_ready, m_agent;
};

TEST_F(Agent, StoresASecretBeforeItAnswersAndTellsOnlyItsHash)
{
    const HWND window = findAgentWindow();
    EXPECT_TRUE(sendToAgent(window, restore2DoneMessage(), "vl-test secret",
                            "S\xC3\xA9"
                            "cret"));
    EXPECT_EQ(std::wstring(L"S\u00E9cret\0", 7), takeSecret()); // with its terminating zero
    expectInJournal(
        "\"name\":\"vl-test secret\",\"bytes\":7,\"sha256\":\"53df99663051f859e42411af41"
        "81b2d8cd915f1f18dad7f4c6dcdcc46923b71e\",\"outcome\":\"stored\"");
    expectInJournal("S\xC3\xA9", false);
    EXPECT_TRUE(sendToAgent(window, restore2DoneMessage(), "vl-test secret", ""));
    expectInJournal("\"outcome\":\"nothing to store\"");
    EXPECT_EQ(L"none", takeSecret());
    PostMessageW(window, restoreDoneMessage(), 1, 2);
    quit(); // comes behind the posted one
    expectInJournal("\"name\":\"WM_VL_AGENT_PMRESTOREDONE\",\"wParam\":1,\"lParam\":2");
    expectInJournal("\"name\":\"WM_VL_AGENT_PMRESTORE2DONE\"");
}

TEST_F(Agent, RefusesABadRequestAndStillAnswers)
{
    const uint32_t done = restore2DoneMessage();
    const struct {
        const char* reason;
        uint32_t command, message;
        std::string name;
        const char* body; // null: no payload block
    } cases[] = {
        {"unknown command", 3, done, "vl-test secret", "b"},
        {"unknown message", 2, restoreDoneMessage(), "vl-test secret", "b"},
        {"name not terminated", 2, done, std::string(0x1000 - 17, 'n'), "b"},
        {"name is not UTF-8", 2, done, "\xFF", "b"},
        {"payload block missing", 2, done, "vl-test secret", nullptr},
        {"payload is not UTF-8", 2, done, "vl-test secret", "\xC3"},
        {"value without a name", 2, done, "", "b"},
    };
    const CKernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"VLMAX_NIPC_DATA_READY"));
    const CKernelHandle answer(OpenEventW(SYNCHRONIZE, FALSE, L"VLMAX_NIPC_BUFFER_READY"));
    mappedBlock_t buffer = openSharedBlock(L"VLMAX_NIPC_BUFFER");
    ASSERT_TRUE(buffer.view);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reason);
        const uint32_t header[] = {c.command, 1, 2, c.message};
        std::memset(buffer.view, c.name.size() > 100 ? 'n' : 0, 0x1000);
        std::memcpy(buffer.view, header, 16);
        std::memcpy(static_cast<char*>(buffer.view) + 16, c.name.data(), c.name.size());
        mappedBlock_t payload;
        if (c.body) {
            payload = createSharedBlock(L"VLTEMPLATE", 2);
            std::memcpy(payload.view, c.body, 2);
        }
        SetEvent(ready.get());
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(answer.get(), limit));
        expectInJournal("\"outcome\":\"refused\",\"reason\":\"" + std::string(c.reason) + '"');
        EXPECT_TRUE(!c.body || *static_cast<char*>(payload.view) == 0); // wiped all the same
        closeSharedBlock(payload);
    }
    closeSharedBlock(buffer);
    EXPECT_EQ(L"none", takeSecret());
}

TEST_F(Agent, SecondOneRefusesAndOnceEndsByItself)
{
    EXPECT_EQ(1u, exitCode(run(L"")));
    quit();
    EXPECT_EQ(1u, exitCode(run(L"--quit")));
    EXPECT_EQ(2u, exitCode(run(L"--journal")));
    start(L"--once");
    EXPECT_TRUE(sendToAgent(findAgentWindow(), restore2DoneMessage(), "n", ""));
    EXPECT_EQ(0u, exitCode(m_agent));
}

// The agent dies over an exchange, before or after it took the signal. Its successor answers.
TEST_F(Agent, SuccessorAnswersTheClientOfADeadAgent)
{
    quit();
    for (const bool taken : {false, true}) {
        SCOPED_TRACE(taken);
        std::optional<agentObjects_t> dead(std::in_place);
        std::thread client(
            [] { sendToAgent(nullptr, restore2DoneMessage(), "vl-test secret", "left"); });
        WaitForSingleObject(dead->dataReady.get(), limit);
        if (!taken)
            SetEvent(dead->dataReady.get());
        dead.reset(); // the client alone keeps the objects now
        start(L"");
        client.join();
        EXPECT_EQ(std::wstring(L"left\0", 5), takeSecret());
        quit();
    }
}

} // namespace
