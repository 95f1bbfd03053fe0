#include <fstream>
#include <sstream>

#include <windows.h>
#include <gtest/gtest.h>

#include "agent/discovery.h"
#include "agent/transfer.h"
#include "backup/currentuser.h"
#include "linkfixture.h"
#include "vlfpapi/vlfpapi.h"

namespace {

constexpr wchar_t journal[] = L"C:\\vlagent.json"; // the prefix is this program's own

CKernelHandle run(std::wstring line)
{
    STARTUPINFOW startup{};
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &process));
    CloseHandle(process.hThread);
    return CKernelHandle(process.hProcess);
}

void expectEnd(const CKernelHandle& process)
{
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process.get(), limit);
    EXPECT_TRUE(GetExitCodeProcess(process.get(), &code) && code == 0);
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

std::string told()
{
    return (std::ostringstream() << std::ifstream(journal).rdbuf()).str();
}

TEST(Agent, StoresASecretOrRefusesTheRequestBeforeItAnswers)
{
    const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vl-ready"));
    const CKernelHandle agent = run(L"vlagent --ready-event vl-ready --journal C:\\vlagent.json");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), limit));
    const UINT done = restore2DoneMessage();
    EXPECT_TRUE(sendToAgent(findAgentWindow(), done, "vl-kept", "S\xC3\xA9/cret"));
    EXPECT_EQ(std::wstring(L"S\u00E9/cret\0", 8), storedSecret(L"vl-kept")); // with its zero
    EXPECT_NE(
        std::string::npos,
        told().find("\"name\":\"vl-kept\",\"bytes\":8,\"sha256\":\"c3e66f1f3e4922891fbf81f6143"
                    "f4094ca5d2073f709033c047ee62981e6fcc8\",\"outcome\":\"stored\""));
    EXPECT_EQ(std::string::npos, told().find("S\xC3\xA9"));
    const std::tuple<const char*, UINT, const char*, const char*> cases[] = {
        {"outcome\":\"nothing to store", done, "vl-kept", ""},
        {"reason\":\"unknown message", restoreDoneMessage(), "vl-refused", "b"},
        {"reason\":\"name is not UTF-8", done, "\xFF", "b"},
        {"reason\":\"payload is not UTF-8", done, "vl-refused", "\xC3"},
        {"reason\":\"value without a name", done, "", "b"}};
    for (const auto& [outcome, message, name, body] : cases) {
        EXPECT_TRUE(sendToAgent(nullptr, message, name, body));
        EXPECT_NE(std::string::npos, told().find(outcome)) << outcome;
    }
    EXPECT_EQ(L"none", storedSecret(L"vl-refused"));
    expectEnd(run(L"vlagent --quit"));
    expectEnd(agent);
}

} // namespace
