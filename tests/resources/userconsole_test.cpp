#include "vluserconsole/consoleids.h"
#include "common/text.h"
#include "installation.h"

namespace {

constexpr DWORD timeLimit = 20000; // milliseconds

// console_t is one run of the console.
class console_t
{
public:
    explicit console_t(const std::wstring& arguments)
    {
        std::wstring line = builtFile(L"VLUserConsole.exe").wstring() + L" " + arguments;
        STARTUPINFOW start{};
        start.cb = sizeof start;
        PROCESS_INFORMATION started{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   nullptr, &start, &started));
        CloseHandle(started.hThread);
        m_process.reset(started.hProcess);
    }
    ~console_t() { TerminateProcess(m_process.get(), 99); }

    DWORD status()
    {
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(m_process.get(), timeLimit), WAIT_OBJECT_0);
        GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

    // window is the console's window once it is shown, null if the program ended first.
    HWND window()
    {
        for (const ULONGLONG end = GetTickCount64() + timeLimit; GetTickCount64() < end;) {
            const HWND found = FindWindowW(nullptr, L"Veltrano User Console");
            if (found && IsWindowVisible(found))
                return found;
            if (WaitForSingleObject(m_process.get(), 10) == WAIT_OBJECT_0)
                break;
        }
        return nullptr;
    }

private:
    CKernelHandle m_process;
};

struct UserConsole : testing::Test {
    testFolder_t folder;
    fs::path log = folder.path / L"new \u00e4" / L"console.log";
    std::wstring logOption = L"--log \"" + log.wstring() + L"\" ";
};

} // namespace

TEST_F(UserConsole, LogsOneLineAStart)
{
    SetEnvironmentVariableW(L"VLUSERCONSOLE_LOG", log.c_str());
    SetEnvironmentVariableW(L"VLUSERCONSOLE_NO_WINDOW", L"1");
    EXPECT_EQ(console_t(L"{A-1}:2:3").status(), 0u);
    SetEnvironmentVariableW(L"VLUSERCONSOLE_LOG", nullptr);
    SetEnvironmentVariableW(L"VLUSERCONSOLE_NO_WINDOW", nullptr);
    EXPECT_EQ(console_t(L"--no-window " + logOption + L"\"\\\"b\\\" \\c\t\u5bc6\"").status(), 0u);
    EXPECT_EQ(console_t(L"--no-window --wrong " + logOption).status(), 2u);
    EXPECT_EQ(console_t(L"--no-window one two " + logOption).status(), 2u);
    EXPECT_EQ(console_t(L"--no-window --log C:\\windows").status(), 1u); // a folder
    const std::string all = fileContents(log);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2);
    for (const std::string& part :
         {std::string(R"("arguments":["{A-1}:2:3"],"plugin":"{A-1}","page":"2","item":"3")"),
          R"(,"\"b\" \\c\u0009)" + utf8FromWide(L"\u5bc6") + R"("],"plugin":"")"})
        EXPECT_NE(all.find(part), std::string::npos) << part << "\n" << all;
}

TEST_F(UserConsole, ShowsWhatItWasStartedWithUntilItsWindowIsClosed)
{
    console_t console(logOption + L"{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0");
    const HWND window = console.window();
    ASSERT_TRUE(window);
    wchar_t heading[100] = {};
    SendMessageW(GetDlgItem(window, IDC_HEADING), WM_GETTEXT, 100,
                 reinterpret_cast<LPARAM>(heading));
    EXPECT_STREQ(heading, L"Password Manager");
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(console.status(), 0u);
    EXPECT_NE(fileContents(log).find("\"window\":true}"), std::string::npos);
}
