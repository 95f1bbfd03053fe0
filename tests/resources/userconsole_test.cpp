#include "vluserconsole/consoleids.h"
#include "common/text.h"
#include "installation.h"

namespace {

constexpr DWORD timeLimit = 20000; // milliseconds

CKernelHandle start(const std::wstring& arguments)
{
    std::wstring line = builtFile(L"VLUserConsole.exe").wstring() + L" " + arguments;
    STARTUPINFOW how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION started{};
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &how, &started));
    CloseHandle(started.hThread);
    return CKernelHandle(started.hProcess);
}

// exitStatus ends a console that does not end by itself.
DWORD exitStatus(const CKernelHandle& console)
{
    if (WaitForSingleObject(console.get(), timeLimit) != WAIT_OBJECT_0)
        TerminateProcess(console.get(), 99);
    WaitForSingleObject(console.get(), timeLimit);
    DWORD status = 0;
    GetExitCodeProcess(console.get(), &status);
    return status;
}

const fs::path logFile = newFolder() / L"new \u00e4" / L"console.log";
const std::wstring logOption = L"--log \"" + logFile.wstring() + L"\" ";

} // namespace

TEST(UserConsole, LogsOneLineAStart)
{
    SetEnvironmentVariableW(L"VLUSERCONSOLE_LOG", logFile.c_str());
    const std::pair<std::wstring, DWORD> starts[] = {
        {L"{A-1}:2:3", 0},         {logOption + L"\"\\\"b\\\" \\c\t\u5bc6\"", 0},
        {L"--wrong", 2},           {L"one two", 2},
        {L"--log C:\\windows", 1}, // a folder
    };
    for (const auto& [arguments, status] : starts)
        EXPECT_EQ(exitStatus(start(L"--no-window " + arguments)), status) << arguments;
    const std::string all = fileContents(logFile);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2) << all;
    for (const std::string& part :
         {std::string(R"("{A-1}:2:3"],"plugin":"{A-1}","page":"2","item":"3")"),
          R"(,"\"b\" \\c\u0009)" + utf8FromWide(L"\u5bc6") + R"("],"plugin":"")"})
        EXPECT_NE(all.find(part), std::string::npos) << part << "\n" << all;
}

TEST(UserConsole, ShowsWhatItWasStartedWithUntilItsWindowIsClosed)
{
    const CKernelHandle console = start(logOption + L"{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0");
    HWND window = nullptr;
    for (DWORD waited = 0; waited < timeLimit && !IsWindowVisible(window); waited += 10) {
        WaitForSingleObject(console.get(), 10);
        window = FindWindowW(nullptr, L"Veltrano User Console");
    }
    wchar_t heading[100] = {};
    SendMessageW(GetDlgItem(window, IDC_HEADING), WM_GETTEXT, 100,
                 reinterpret_cast<LPARAM>(heading));
    EXPECT_STREQ(heading, L"Password Manager");
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(exitStatus(console), 0u);
}
