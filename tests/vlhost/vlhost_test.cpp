#include <filesystem>
#include <map>

#include <windows.h>
#include <gtest/gtest.h>

#include "common/scoped.h"
#include "common/text.h"
#include "support/tracedecoder.h"

namespace fs = std::filesystem;

namespace {

constexpr DWORD limit = 60000;
const fs::path folder = L"C:\\vlhost test";
constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

void fill(const fs::path& path, const std::string& content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

void setText(HKEY root, const wchar_t* key, const wchar_t* name, const std::wstring& text,
             DWORD type = REG_SZ)
{
    ASSERT_EQ(0, RegSetKeyValueW(root, key, name, type, text.c_str(),
                                 static_cast<DWORD>(2 * text.size() + 2)));
}

struct result_t {
    DWORD status = STILL_ACTIVE;
    std::string out, err;
};

// process_t is a program of the build with its streams in files.
class process_t
{
public:
    process_t(const std::wstring& program, const std::wstring& arguments,
              const std::string& input = "")
        : m_streams(folder / L"streams" / std::to_wstring(++count))
    {
        fill(m_streams / L"in", input);
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const auto open = [&](const wchar_t* name, DWORD access, DWORD how) {
            return CFileHandle(CreateFileW((m_streams / name).c_str(), access,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, how, 0,
                                           nullptr));
        };
        const CFileHandle in = open(L"in", GENERIC_READ, OPEN_EXISTING);
        const CFileHandle out = open(L"out", GENERIC_WRITE, CREATE_ALWAYS);
        const CFileHandle err = open(L"err", GENERIC_WRITE, CREATE_ALWAYS);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = in.get(), startup.hStdOutput = out.get(), startup.hStdError = err.get();
        std::wstring line = L'"' + (Bin() / program).wstring() + L"\" " + arguments;
        PROCESS_INFORMATION process{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &startup, &process));
        CloseHandle(process.hThread);
        m_process.reset(process.hProcess);
    }

    result_t Result() const
    {
        result_t result;
        EXPECT_EQ(WaitForSingleObject(m_process.get(), limit), WAIT_OBJECT_0);
        GetExitCodeProcess(m_process.get(), &result.status);
        result.out = fileBytes(m_streams / L"out");
        result.err = fileBytes(m_streams / L"err");
        return result;
    }

    static fs::path Bin()
    {
        wchar_t path[1024] = {};
        GetModuleFileNameW(nullptr, path, 1024);
        return fs::path(path).parent_path();
    }

private:
    static inline int count = 0;
    fs::path m_streams;
    CKernelHandle m_process;
};

result_t host(const std::wstring& arguments, const std::string& input = "")
{
    return process_t(L"vlhost.exe", arguments, input).Result();
}

std::string hostText(const std::wstring& arguments, const std::string& input = "")
{
    const result_t result = host(arguments, input);
    EXPECT_EQ(0u, result.status) << utf8FromWide(arguments) << '\n' << result.err << result.out;
    return result.out;
}

// Host has a user with templates, quick links, categories and settings, anew for each test.
class Host : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        for (const wchar_t* key :
             {L"SOFTWARE\\Veltrano\\Applications", L"SOFTWARE\\Veltrano\\Applications\\KRS"})
            setText(HKEY_LOCAL_MACHINE, key, L"BinDir", process_t::Bin().wstring());
        CopyFileW((process_t::Bin() / L"VLFPApi.dll").c_str(),
                  L"C:\\windows\\system32\\VLFPApi.dll", TRUE);
        hostText(L"--plugin \"" + (process_t::Bin() / L"VLOnlineIDs.dll").wstring() + L"\" info");
        hostText(L"register");
        hostText(L"setting set path_localstorage_dir \"C:\\vlhost test\\own\\\\\"");
        hostText(L"setting set path_quicklink_filename \"C:\\vlhost test\\links.txt\"");
        hostText(L"setting set path_dontpromptlist_filename \"C:\\vlhost test\\never.txt\"");
    }

    void SetUp() override
    {
        fs::remove_all(folder / L"own");
        fill(folder / L"own" / L"bank.vlm", "bank");
        fill(folder / L"own" / L"Köln.vlm", "post");
        fill(folder / L"own" / L"updata.vls", "state");
        fill(folder / L"never.txt", "https://never.example/\r\n");
        fill(folder / L"links.txt",
             "[ShortCutRecord]\r\nUrl=https://bank.example/\r\nName=Bank\r\nProfile=1\r\n"
             "ManifestID=m\r\nUnknown=kept by none but a raw copy\r\n");
        RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
        setText(HKEY_CURRENT_USER, categoriesKey, L"Work", L"%x%;bank", REG_EXPAND_SZ);
        setText(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\Applications\\DashBoard",
                L"LastQLCategory", L"Work");
        hostText(L"setting set open_guard_desk_qa Ctrl+1");
        hostText(L"setting set useGrabbingCreds 1");
    }

    // All that a restore may touch, byte for byte.
    static std::map<std::string, std::string> state()
    {
        std::map<std::string, std::string> all;
        for (const auto& place : {folder / L"own", folder})
            for (const auto& entry : fs::directory_iterator(place))
                if (entry.is_regular_file() && entry.path().extension() != L".vlb")
                    all[utf8FromWide(entry.path().wstring())] = fileBytes(entry.path());
        for (const auto& [key, name] :
             {std::pair(categoriesKey, L"Work"), std::pair(categoriesKey, L"Late"),
              std::pair(L"SOFTWARE\\Veltrano\\Applications\\DashBoard", L"LastQLCategory")}) {
            char data[256];
            DWORD type = 0, size = sizeof data;
            if (RegGetValueW(HKEY_CURRENT_USER, key, name, RRF_RT_ANY | RRF_NOEXPAND, &type, data,
                             &size) == ERROR_SUCCESS)
                all[utf8FromWide(name)] = std::to_string(type) + std::string(data, size);
        }
        for (const wchar_t* key : {L"open_guard_desk_qa", L"useGrabbingCreds"})
            all[utf8FromWide(key)] = hostText(std::wstring(L"setting get ") + key);
        return all;
    }

    // Makes what a later user would have, so that a restore of the first state has much to do.
    static void change()
    {
        fs::remove(folder / L"own" / L"bank.vlm");
        fill(folder / L"own" / L"late.vlm", "late");
        fill(folder / L"own" / L"updata.vls", "later state");
        setText(HKEY_CURRENT_USER, categoriesKey, L"Late", L"late", REG_EXPAND_SZ);
        hostText(L"setting set open_guard_desk_qa Ctrl+2");
    }
};

TEST_F(Host, BackupIsWholeAndNeverOverwritesUnasked)
{
    const fs::path file = folder / L"kept.vlb";
    const std::wstring backup = L"backup \"" + file.wstring() + L"\"";
    fill(file, "precious");
    EXPECT_EQ(1u, host(backup).status);
    EXPECT_EQ("precious", fileBytes(file));
    hostText(backup + L" --force");
    fs::remove_all(folder / L"own");
    fs::remove(folder / L"links.txt");
    EXPECT_NE(std::string::npos, host(backup + L" --force").err.find("vlhost trace on"));
    EXPECT_EQ("\x30", fileBytes(file).substr(0, 1)); // the earlier one stays
}

TEST_F(Host, RestoreTouchesNothingUnlessItIsMeantAndSound)
{
    hostText(L"backup --force \"C:\\vlhost test\\good.vlb\"");
    std::string bytes = fileBytes(folder / L"good.vlb");
    fill(folder / L"cut.vlb", bytes.substr(0, bytes.size() - 1));
    const std::string name("\0b\0a\0n\0k\0.\0v\0l\0m", 16);
    ASSERT_NE(std::string::npos, bytes.find(name));
    bytes.replace(bytes.find(name), 16, "\0.\0.\0\\\0.\0e\0x\0e\0x", 16);
    fill(folder / L"hostile.vlb", bytes);
    change();
    const auto before = state();
    const std::string plan = hostText(L"restore --dry-run \"C:\\vlhost test\\good.vlb\"");
    for (const char* told : {"late.vlm", "bank.vlm", "links.txt", "updata.vls"})
        EXPECT_NE(std::string::npos, plan.find(told)) << told << plan;
    for (const wchar_t* refused : {L"cut.vlb\"", L"cut.vlb\" --force", L"hostile.vlb\"",
                                   L"good.vlb\" --entry plugin-data --secret-from 0"}) // no agent
        EXPECT_EQ(1u, host(std::wstring(L"restore \"C:\\vlhost test\\") + refused, "x").status);
    EXPECT_EQ(before, state());
}

TEST_F(Host, UndoBringsBackTheExactStateAndCanBeUndone)
{
    hostText(L"backup --force \"C:\\vlhost test\\good.vlb\"");
    change();
    const auto before = state();
    for (const wchar_t* entry : {L"1", L"2 --flags 7", L"plugin-data"}) {
        hostText(std::wstring(L"restore \"C:\\vlhost test\\good.vlb\" --entry ") + entry);
        const auto restored = state();
        EXPECT_EQ("bank", fileBytes(folder / L"own" / L"bank.vlm"));
        EXPECT_FALSE(fs::exists(folder / L"own" / L"late.vlm"));
        hostText(L"restore --undo --dry-run");
        EXPECT_EQ(restored, state());
        for (const auto& expected : {before, restored, before}) {
            hostText(L"restore --undo");
            EXPECT_EQ(expected, state()) << utf8FromWide(entry);
        }
    }
    const fs::path file = folder / L"own" / L"late.vlm"; // that the plug-in can't delete
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::string out = host(L"restore \"C:\\vlhost test\\good.vlb\"").out;
    EXPECT_NE(std::string::npos, out.find("late.vlm was not deleted")) << out;
    hostText(L"restore --undo");
    EXPECT_EQ(before, state());
    EXPECT_TRUE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(Host, FailuresAreOneLineWithAHintAndAStatus)
{
    fill(folder / L"text.dll", "no library");
    const struct {
        const wchar_t* arguments;
        DWORD status;
        const char* told;
    } cases[] = {
        {L"", 2, "see --help"},
        {L"restore", 2, "vlhost restore FILE"},
        {L"restore C:\\none.vlb", 1, "spelt right"},
        {L"restore C:\\none.vlb --secret-from 0", 2, "plugin-data"},
        {L"backup C:\\none\\b.vlb", 1, "folder there"},
        {L"--plugin C:\\none.dll info", 1, "--plugin names another"},
        {L"--plugin \"C:\\vlhost test\\text.dll\" info", 1, "64-bit DLL"},
        {L"--plugin C:\\windows\\system32\\version.dll info", 1, "is this the plug-in's DLL"},
        {L"setting get no_such_key", 1, "spelt right"},
        {L"secret --name none read", 1, "none of that name"},
        {L"trace on --until 2001-01-01", 2, "tomorrow"},
        {L"trace on --dir traces", 2, "full path"},
        {L"trace off --wait 999999", 1, "is the number right"},
    };
    for (const auto& [arguments, status, told] : cases) {
        const auto [got, out, err] = host(arguments);
        EXPECT_EQ(status, got) << utf8FromWide(arguments);
        EXPECT_TRUE(err.starts_with("vlhost: ") && err.find(told) < err.find('\n') &&
                    err.find('\n') == err.size() - 1)
            << utf8FromWide(arguments) << '\n'
            << err;
    }
    hostText(L"unregister");
    EXPECT_NE(std::string::npos, host(L"status").err.find("vlhost register"));
    hostText(L"register");
}

TEST_F(Host, SecretGoesFromStandardInputToTheStoreAndNowhereElse)
{
    const std::string secret = "pässwörd of nobody";
    hostText(L"backup --force \"C:\\vlhost test\\good.vlb\"");
    const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vlhost-test-ready"));
    const process_t agent(L"vlagent.exe", L"--ready-event vlhost-test-ready "
                                          L"--journal \"C:\\vlhost test\\journal.jsonl\"");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), limit));
    const std::string out =
        hostText(L"restore \"C:\\vlhost test\\good.vlb\" --entry plugin-data --secret-from 0",
                 secret + "\n");
    EXPECT_EQ(secret + "\n", hostText(L"secret read"));
    EXPECT_EQ(0u, process_t(L"vlagent.exe", L"--quit").Result().status);
    EXPECT_EQ(0u, agent.Result().status);
    EXPECT_EQ(std::string::npos, out.find(secret));
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        EXPECT_TRUE(entry.path().string().find("streams") != std::string::npos ||
                    fileBytes(entry.path()).find(secret) == std::string::npos)
            << entry.path();
    hostText(L"secret delete");
}

// The test's own process stands for one that traces: what it holds open is what a tracer would.
TEST_F(Host, TraceIsSwitchedAndFollowed)
{
    const std::wstring self = std::to_wstring(GetCurrentProcessId());
    const std::wstring on = L"trace on --dir \"C:\\vlhost test\\traces\" --wait " + self;
    const result_t late = host(on + L" --timeout 1");
    EXPECT_NE(std::string::npos, late.err.find("process " + utf8FromWide(self)));
    const process_t waiting(L"vlhost.exe", on);
    fs::create_directories(folder / L"traces");
    const auto name = L"host.x64.vlonlineids.dll~~01.02.26_at_03.04.05.006~~1." + self + L".trc3";
    CFileHandle file(CreateFileW((folder / L"traces" / name).c_str(), GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, 0,
                                 nullptr));
    EXPECT_EQ(0u, waiting.Result().status) << waiting.Result().err;
    EXPECT_NE(std::string::npos, hostText(L"trace status").find("open: yes"));
    EXPECT_EQ(1u, host(L"trace off --timeout 1 --wait " + self).status);
    file.reset();
    hostText(L"trace off --wait " + self);
    EXPECT_NE(std::string::npos, hostText(L"trace on --until 2099-12-31 --to console")
                                     .find("until the beginning of 2099-12-31"));
    EXPECT_NE(std::string::npos, hostText(L"trace off").find("tracing: off"));
}

} // namespace
