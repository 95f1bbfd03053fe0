#include "vluserconsole/consoleids.h"
#include "common/scoped.h"
#include "common/module.h"
#include "common/text.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

constexpr DWORD timeLimit = 20000; // milliseconds
constexpr wchar_t target[] = L"{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0";

// console_t is one run of the console, with a log of its own.
class console_t
{
public:
    explicit console_t(const std::wstring& arguments)
    {
        const fs::path program =
            fs::path(moduleFileName(nullptr)).parent_path() / L"VLUserConsole.exe";
        std::wstring line = L'"' + program.wstring() + L"\" " + arguments;
        STARTUPINFOW start{};
        start.cb = sizeof start;
        PROCESS_INFORMATION started{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   nullptr, &start, &started));
        CloseHandle(started.hThread);
        m_process.reset(started.hProcess);
    }
    ~console_t() { TerminateProcess(m_process.get(), 99); }
    console_t(const console_t&) = delete;
    console_t& operator=(const console_t&) = delete;

    DWORD status()
    {
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(m_process.get(), timeLimit), WAIT_OBJECT_0);
        GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

    // window is the console's window once all of it is there, null if the program ended first.
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

std::vector<std::string> lines(const fs::path& path)
{
    std::vector<std::string> all;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);)
        all.push_back(line);
    return all;
}

class UserConsole : public testing::Test
{
protected:
    UserConsole()
    {
        wchar_t folder[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        m_folder = fs::path(folder) / (L"console" + std::to_wstring(GetCurrentProcessId()));
        log = m_folder / L"new \u00e4" / L"console.log";
    }
    ~UserConsole() override
    {
        SetEnvironmentVariableW(L"VLUSERCONSOLE_LOG", nullptr);
        SetEnvironmentVariableW(L"VLUSERCONSOLE_NO_WINDOW", nullptr);
        std::error_code ignored;
        fs::remove(log, ignored);
        fs::remove(log.parent_path(), ignored);
        fs::remove(m_folder, ignored);
    }

    std::wstring logOption() const { return L"--log \"" + log.wstring() + L"\" "; }

    fs::path log;

private:
    fs::path m_folder;
};

std::wstring shown(HWND window, int control)
{
    wchar_t text[400] = {};
    SendMessageW(GetDlgItem(window, control), WM_GETTEXT, 400, reinterpret_cast<LPARAM>(text));
    return text;
}

bool has(const std::string& line, const std::string& part)
{
    return line.find(part) != std::string::npos;
}

} // namespace

TEST_F(UserConsole, LogsOneLineAStart)
{
    EXPECT_EQ(console_t(L"--no-window " + logOption() + target).status(), 0u);
    EXPECT_EQ(console_t(L"--no-window " + logOption() + L"\"a \\\"b\\\" \\c\t\u5bc6\"").status(),
              0u);
    const auto written = lines(log);
    ASSERT_EQ(written.size(), 2u);
    EXPECT_TRUE(written[0].starts_with("{\"time\":\"20") &&
                written[0].ends_with("\"window\":false}"));
    EXPECT_TRUE(
        has(written[0],
            "\"plugin\":\"{42F9948B-B690-4325-A073-63A8BF31FF32}\",\"page\":\"0\",\"item\":\"0\""))
        << written[0];
    EXPECT_TRUE(has(written[1], ",\"a \\\"b\\\" \\\\c\\u0009" + utf8FromWide(L"\u5bc6") + "\"]"))
        << written[1];
    EXPECT_TRUE(has(written[1], "\"plugin\":\"\"")) << written[1];
}

TEST_F(UserConsole, TakesItsSettingsFromTheEnvironment)
{
    SetEnvironmentVariableW(L"VLUSERCONSOLE_LOG", log.c_str());
    SetEnvironmentVariableW(L"VLUSERCONSOLE_NO_WINDOW", L"1");
    EXPECT_EQ(console_t(target).status(), 0u);
    EXPECT_EQ(lines(log).size(), 1u);
}

TEST_F(UserConsole, RefusesWhatItCannotFollow)
{
    const struct {
        std::wstring arguments;
        DWORD status;
    } cases[] = {
        {L"--no-window --wrong", 2},
        {L"--no-window one two", 2},
        {L"--no-window --log", 2},
        {L"--no-window --log C:\\windows one", 1}, // a folder
    };
    for (const auto& c : cases)
        EXPECT_EQ(console_t(c.arguments).status(), c.status) << utf8FromWide(c.arguments);
}

TEST_F(UserConsole, ShowsWhatItWasStartedWithUntilItsWindowIsClosed)
{
    console_t console(logOption() + target);
    const HWND window = console.window();
    ASSERT_TRUE(window);
    EXPECT_EQ(shown(window, IDC_HEADING), L"Password Manager");
    EXPECT_EQ(shown(window, IDC_PLUGIN), L"{42F9948B-B690-4325-A073-63A8BF31FF32}");
    EXPECT_EQ(shown(window, IDC_PAGE), L"0");
    EXPECT_EQ(shown(window, IDC_LOG), log.wstring());
    EXPECT_TRUE(shown(window, IDC_COMMAND_LINE).ends_with(target));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(console.status(), 0u);
    EXPECT_EQ(lines(log).size(), 1u);
}
