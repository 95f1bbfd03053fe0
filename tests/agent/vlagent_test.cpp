#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

#include <windows.h>
#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "agent/transfer.h"
#include "backup/currentuser.h"
#include "linkfixture.h"
#include "vlfpapi/vlfpapi.h"

namespace {

constexpr wchar_t journal[] = L"C:\\vlagent.json"; // the prefix is this program's own

CKernelHandle run(const std::wstring& arguments)
{
    std::wstring line = L"vlagent " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &process));
    CloseHandle(process.hThread);
    return CKernelHandle(process.hProcess);
}

DWORD exitCode(const CKernelHandle& process)
{
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process.get(), limit);
    GetExitCodeProcess(process.get(), &code);
    return code;
}

std::wstring storedSecret(const wchar_t* name)
{
    const CLoadedModule store(LoadLibraryW(L"VLFPApi.dll"));
    const auto read = reinterpret_cast<decltype(&VLFPReadSecret)>(
        reinterpret_cast<void*>(GetProcAddress(store.get(), "VLFPReadSecret")));
    wchar_t value[100];
    uint32_t bytes = sizeof value;
    const LONG status =
        read(CCurrentUser().Qualified().c_str(), 3, name, reinterpret_cast<BYTE*>(value), &bytes);
    return status == 0 ? std::wstring(value, bytes / sizeof *value) : L"none";
}

// Agent runs vlagent.exe, up before each test and gone after it, with a journal of its own.
class Agent : public testing::Test
{
protected:
    void SetUp() override { start(L""); }

    void start(const std::wstring& more)
    {
        DeleteFileW(journal);
        const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vl-ready"));
        m_agent = run(L"--ready-event vl-ready --journal C:\\vlagent.json " + more);
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), limit));
    }

    void TearDown() override
    {
        EXPECT_EQ(0u, exitCode(run(L"--quit")));
        EXPECT_EQ(0u, exitCode(m_agent));
        EXPECT_TRUE(told("\"event\":\"ended\""));
    }

    bool told(const std::string& text) const
    {
        std::ostringstream lines;
        lines << std::ifstream(journal).rdbuf();
        return lines.str().find(text) != std::string::npos;
    }

    const uint32_t m_done = restore2DoneMessage();
    CKernelHandle m_agent;
};

TEST_F(Agent, StoresASecretBeforeItAnswersAndTellsOnlyItsHash)
{
    const HWND window = findAgentWindow();
    EXPECT_TRUE(sendToAgent(window, m_done, "vl-kept", "S\xC3\xA9/cret"));
    EXPECT_EQ(std::wstring(L"S\u00E9/cret\0", 8), storedSecret(L"vl-kept")); // with its zero
    EXPECT_TRUE(told("\"name\":\"vl-kept\",\"bytes\":8,\"sha256\":"
                     "\"c3e66f1f3e4922891fbf81f6143f4094ca5d2073f709033c047ee62981e6fcc8\","
                     "\"outcome\":\"stored\""));
    EXPECT_FALSE(told("S\xC3\xA9"));
    EXPECT_TRUE(sendToAgent(window, m_done, "vl-kept", ""));
    EXPECT_TRUE(told("\"outcome\":\"nothing to store\""));
    PostMessageW(window, restoreDoneMessage(), 1, 2);
    TearDown(); // is asked for behind the posted ones
    EXPECT_TRUE(told("\"name\":\"WM_VL_AGENT_PMRESTOREDONE\",\"wParam\":1,\"lParam\":2"));
    EXPECT_TRUE(told("\"name\":\"WM_VL_AGENT_PMRESTORE2DONE\""));
    start(L"");
}

TEST_F(Agent, RefusesABadRequestAndStillAnswers)
{
    const struct {
        const char* reason;
        uint32_t message;
        const char *name, *body;
    } cases[] = {
        {"unknown message", restoreDoneMessage(), "vl-refused", "b"},
        {"name is not UTF-8", m_done, "\xFF", "b"},
        {"payload is not UTF-8", m_done, "vl-refused", "\xC3"},
        {"value without a name", m_done, "", "b"},
        {"payload block missing", 0, nullptr, nullptr}, // a signal without a client
        {"unknown command", 0, nullptr, nullptr},
    };
    const agentObjects_t joined;
    for (const auto& c : cases) {
        if (c.name) {
            EXPECT_TRUE(sendToAgent(nullptr, c.message, c.name, c.body));
        } else {
            SetEvent(joined.dataReady.get());
            EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(joined.acknowledge.get(), limit));
            *blockView_t(L"VLMAX_NIPC_BUFFER").bytes = 3; // the command, from now on
        }
        EXPECT_TRUE(told("\"outcome\":\"refused\",\"reason\":\"" + std::string(c.reason) + '"'));
    }
    EXPECT_EQ(L"none", storedSecret(L"vl-refused"));
}

TEST_F(Agent, SecondOneRefusesAndOnceEndsByItself)
{
    EXPECT_EQ(1u, exitCode(run(L"")));
    TearDown();
    EXPECT_EQ(1u, exitCode(run(L"--quit")));
    start(L"--once");
    EXPECT_TRUE(sendToAgent(nullptr, m_done, "n", ""));
    EXPECT_EQ(0u, exitCode(m_agent));
    start(L"");
}

// The agent dies over an exchange, before or after it took the signal. Its successor answers.
TEST_F(Agent, SuccessorAnswersTheClientOfADeadAgent)
{
    for (const std::string value : {"taken", "left"}) {
        TearDown();
        std::optional<agentObjects_t> dead(std::in_place);
        std::thread client([&] { sendToAgent(nullptr, m_done, "vl-kept", value); });
        WaitForSingleObject(dead->dataReady.get(), limit);
        if (value == "left")
            SetEvent(dead->dataReady.get());
        dead.reset(); // the client alone keeps the objects now
        start(L"");
        client.join();
        EXPECT_EQ(std::wstring(value.begin(), value.end()) + L'\0', storedSecret(L"vl-kept"));
    }
}

} // namespace
