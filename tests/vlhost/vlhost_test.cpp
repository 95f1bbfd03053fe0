#include "common/module.h"
#include "common/scoped.h"
#include "common/text.h"
#include "shared/commandline.h"
#include "support/files.h"
#include "support/importhooks.h"
#include "support/registry.h"
#include "vlhost/commands.h"

#include <windows.h>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include <gtest/gtest.h>
#include <json/reader.h>

namespace fs = std::filesystem;

namespace {

constexpr DWORD limit = 60000;
const fs::path folder = L"C:\\vlhost test"; // the current one
const fs::path userData = fs::path(_wgetenv(L"LOCALAPPDATA")) / L"Veltrano\\KRS";
const fs::path copies = userData / L"SafetyCopies";
const fs::path bin = fs::path(moduleFileName(nullptr)).parent_path();
constexpr wchar_t dashboardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

bool has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

struct result_t {
    DWORD status;
    std::string out, err;
};

// process_t is a program of the build with its streams in the files 0, 1 and 2 of a folder.
class process_t
{
public:
    process_t(const std::wstring& program, const std::wstring& arguments,
              const std::string& input = "")
    {
        writeFile(m_streams / L"0", input);
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        CFileHandle streams[3];
        for (size_t i = 0; i < 3; ++i)
            streams[i].reset(CreateFileW(
                (m_streams / std::to_wstring(i)).c_str(), i ? GENERIC_WRITE : GENERIC_READ,
                FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_ALWAYS, 0, nullptr));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup, startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = streams[0].get(), startup.hStdOutput = streams[1].get();
        startup.hStdError = streams[2].get();
        std::wstring line = L'"' + (bin / program).wstring() + L"\" " + arguments;
        PROCESS_INFORMATION process{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &startup, &process))
            << "error " << GetLastError();
        m_thread.reset(process.hThread);
        m_process.reset(process.hProcess);
    }

    bool Runs(DWORD milliseconds) const
    {
        return WaitForSingleObject(m_process.get(), milliseconds) == WAIT_TIMEOUT;
    }
    void Stop() const { SuspendThread(m_thread.get()); }
    void GoOn() const { ResumeThread(m_thread.get()); }

    // KillOnce ends the process as soon as it has done what is looked for, or if it ends itself.
    void KillOnce(const std::function<bool()>& done) const
    {
        while (Runs(0) && !done())
            SwitchToThread();
        TerminateProcess(m_process.get(), 9);
        WaitForSingleObject(m_process.get(), limit);
    }

    result_t Result() const
    {
        DWORD status = STILL_ACTIVE;
        EXPECT_EQ(WaitForSingleObject(m_process.get(), limit), WAIT_OBJECT_0);
        GetExitCodeProcess(m_process.get(), &status);
        return {status, fileBytes(m_streams / L"1"), fileBytes(m_streams / L"2")};
    }

private:
    static inline int count = 0;
    const fs::path m_streams = fs::path(L"streams") / std::to_wstring(++count);
    CKernelHandle m_process, m_thread;
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

// Host has a user with templates, quick links, categories and settings, made again for each test.
class Host : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        fs::create_directories(folder);
        fs::current_path(folder);
        setBin();
        CopyFileW((bin / L"VLFPApi.dll").c_str(), L"C:\\windows\\system32\\VLFPApi.dll", TRUE);
        hostText(L"--plugin \"" + (bin / L"VLOnlineIDs.dll").wstring() + L"\" info");
        hostText(L"register");
        hostText(L"setting set path_localstorage_dir \"C:\\vlhost test\\own\\\\\"");
        hostText(L"setting set path_quicklink_filename \"C:\\vlhost test\\links.txt\"");
        hostText(L"setting set path_dontpromptlist_filename \"C:\\vlhost test\\never.txt\"");
    }

    static void setBin(const std::wstring& place = bin)
    {
        for (const wchar_t* key : {L"", L"\\KRS"})
            setValue(HKEY_LOCAL_MACHINE, std::wstring(L"SOFTWARE\\Veltrano\\Applications") + key,
                     L"BinDir", place);
    }

    void SetUp() override
    {
        fs::remove_all(L"own");
        writeFile(L"own\\bank.vlm", "bank");
        writeFile(L"own\\Köln.vlm", "post");
        writeFile(L"own\\updata.vls", "state");
        writeFile(L"never.txt", "https://never.example/\r\n");
        writeFile(L"links.txt",
                  "[ShortCutRecord]\r\nUrl=https://bank.example/\r\nName=Bank\r\nProfile=1\r\n"
                  "Manifest=C:\\vlhost test\\own\\bank.vlm\r\n"
                  "ManifestID=m\r\nUnknown=kept by none but a raw copy\r\n");
        fs::remove_all(copies);
        RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
        setValue(HKEY_CURRENT_USER, categoriesKey, L"Work", L"%x%;bank", REG_EXPAND_SZ);
        setValue(HKEY_CURRENT_USER, dashboardKey, L"LastQLCategory", L"Work");
        hostText(L"setting set open_guard_desk_qa Ctrl+1");
        hostText(L"setting set useGrabbingCreds 1");
        hostText(L"backup --force good.vlb");
    }

    // All that a restore may touch, byte for byte.
    static std::map<std::string, std::string> state()
    {
        std::map<std::string, std::string> all;
        for (const wchar_t* place : {L"own", L"."})
            for (const auto& entry : fs::directory_iterator(place))
                if (entry.is_regular_file() && entry.path().extension() != L".vlb")
                    all[utf8FromWide(entry.path().wstring())] = fileBytes(entry.path());
        for (const auto& [key, name] :
             {std::pair(categoriesKey, L"Work"), std::pair(categoriesKey, L"Late"),
              std::pair(dashboardKey, L"LastQLCategory")}) {
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
        fs::remove(L"own\\bank.vlm");
        writeFile(L"own\\late.vlm", "late");
        writeFile(L"own\\updata.vls", "later state");
        setValue(HKEY_CURRENT_USER, categoriesKey, L"Late", L"late", REG_EXPAND_SZ);
        RegDeleteKeyValueW(HKEY_CURRENT_USER, dashboardKey, L"LastQLCategory");
        hostText(L"setting set open_guard_desk_qa Ctrl+2");
    }
};

CFileHandle held(const wchar_t* path)
{
    return CFileHandle(CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

TEST_F(Host, BackupIsEqualToTheDiskOrNotWritten)
{
    const std::string good = fileBytes(L"good.vlb");
    EXPECT_EQ(1u, host(L"backup good.vlb").status); // not without --force
    const auto [status, bytes, summary] = host(L"backup -");
    EXPECT_EQ(good, bytes);
    EXPECT_TRUE(has(summary, "2 templates and 1 data file, equal to the disk; 1 quick link; "
                             "1 category; settings"))
        << summary;
    writeFile(L"own\\nothing.vlm", "");
    const auto [warned, plain, warning] = host(L"backup warned.vlb --force");
    EXPECT_EQ(0u, warned);
    EXPECT_TRUE(has(warning, "vlhost: warning: ") && has(warning, "nothing.vlm")) << warning;
    fs::remove(L"own\\nothing.vlm");
    CFileHandle open;
    const std::pair<const char*, std::function<void()>> faults[] = {
        {"bank.vlm", [&] { open = held(L"own\\bank.vlm"); }},
        {"links.txt", [&] { open = held(L"links.txt"); }},
        {"never.txt", [&] { open = held(L"never.txt"); }},
        // Work comes after a value that is no text.
        {"Work", [] { setValue(HKEY_CURRENT_USER, categoriesKey, L"Odd", L"", REG_DWORD, 4); }},
        {"folder.vlm", [] { fs::create_directory(L"own\\folder.vlm"); }},
        {"VloSet.dll", [] { setBin(L"C:\\none"); }},
        {"vlhost trace on",
         [] {
             setBin();
             fs::remove_all(L"own");
         }},
    };
    for (const auto& [shown, make] : faults) {
        SCOPED_TRACE(shown);
        make();
        const result_t result = host(L"backup good.vlb --force");
        open.reset();
        EXPECT_EQ(1u, result.status);
        EXPECT_TRUE(has(result.err, shown)) << result.err;
        EXPECT_EQ(good, fileBytes(L"good.vlb"));
    }
}

TEST_F(Host, RestoreTouchesNothingUnlessItIsMeantAndSound)
{
    std::string bytes = fileBytes(L"good.vlb");
    writeFile(L"cut.vlb", bytes.substr(0, bytes.size() - 1));
    const std::string name("\0b\0a\0n\0k\0.\0v\0l\0m", 16);
    ASSERT_NE(std::string::npos, bytes.find(name));
    bytes.replace(bytes.find(name), 16, "\0.\0.\0\\\0.\0e\0x\0e\0x", 16);
    writeFile(L"hostile.vlb", bytes);
    bytes.replace(bytes.find(std::string("\0.\0.\0\\", 6)), 16, "\0\n\0\x1B\0[\0m\0.\0v\0l\0m", 16);
    writeFile(L"steering.vlb", bytes);
    change();
    fs::create_directories(copies);
    CFileHandle other(CreateFileW((copies / L"lock").c_str(), GENERIC_READ, 7, nullptr, OPEN_ALWAYS,
                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    EXPECT_TRUE(has(host(L"restore good.vlb").err, "is another restore at work"));
    other.reset();
    const auto before = state();
    const std::string plan = hostText(L"restore --dry-run good.vlb");
    for (const char* shown : {"delete           4  C:\\vlhost test\\own\\late.vlm",
                              "add              4  C:\\vlhost test\\own\\bank.vlm",
                              "same             4  C:\\vlhost test\\own\\Köln.vlm",
                              "change           5  C:\\vlhost test\\own\\updata.vls",
                              "1, change C:\\vlhost test\\links.txt", "nothing was done"})
        EXPECT_TRUE(has(plan, shown)) << shown << '\n' << plan;
    const result_t steering = host(L"restore --dry-run steering.vlb");
    EXPECT_TRUE(has(steering.out, "own\\\\n\\x1B[m.vlm")) << steering.out;
    EXPECT_FALSE(has(steering.out + steering.err, "\x1B"));
    CFileHandle open = held(L"own\\Köln.vlm"); // so that no safety copy can be made
    EXPECT_TRUE(has(host(L"restore good.vlb").err, "nothing was touched"));
    open.reset();
    for (const wchar_t* refused : {L"cut.vlb", L"cut.vlb --force", L"hostile.vlb",
                                   L"good.vlb --entry plugin-data --secret-from 0"}) // no agent
        EXPECT_EQ(1u, host(std::wstring(L"restore ") + refused, "x").status);
    EXPECT_EQ(before, state());
}

TEST_F(Host, OfTwoFilesOfOnePlaceTheLastStays)
{
    std::string bytes = fileBytes(L"good.vlb");
    const std::string one("\0b\0a\0n\0k\0.", 10), other("\0K\0\xF6\0l\0n\0.", 10);
    const size_t places[] = {bytes.find(one), bytes.find(other)};
    ASSERT_NE(std::string::npos, std::max(places[0], places[1]));
    writeFile(L"own\\bank.vlm", "none");
    writeFile(L"twice.vlb", bytes.replace(places[1], 10, one));
    hostText(L"restore twice.vlb --force"); // which compares what it left with its plan
    EXPECT_EQ(places[0] > places[1] ? "bank" : "post", fileBytes(L"own\\bank.vlm"));
}

TEST_F(Host, UndoBringsBackTheExactStateAndCanBeUndone)
{
    change();
    const auto before = state();
    for (const wchar_t* entry : {L"1", L"2 --flags 7", L"plugin-data"}) {
        hostText(std::wstring(L"restore good.vlb --entry ") + entry);
        const auto restored = state();
        EXPECT_EQ("bank", fileBytes(L"own\\bank.vlm"));
        EXPECT_FALSE(fs::exists(L"own\\late.vlm"));
        hostText(L"restore --undo --dry-run");
        EXPECT_EQ(restored, state());
        for (const auto& expected : {before, restored, before}) {
            hostText(L"restore --undo");
            EXPECT_EQ(expected, state()) << utf8FromWide(entry);
        }
    }
    const fs::path file = L"own\\late.vlm"; // that the plug-in can't delete
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    const std::string out = host(L"restore good.vlb").out;
    EXPECT_TRUE(has(out, "late.vlm: was not deleted")) << out;
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    fs::remove(file);
    hostText(L"restore --undo");
    EXPECT_EQ(before, state());
    EXPECT_TRUE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// A restore or an undoing may end at any moment, and be tried again: every file that the user had
// is on the disk or in a copy that is listed, and the plain --undo leads back to the state before.
TEST_F(Host, NothingIsLostWhereverItIsKilled)
{
    change();
    for (int i = 0; i < 260; ++i) // more than one folder of a copy holds
        writeFile(L"own\\my" + std::to_wstring(i) + L".vlm", "mine " + std::to_string(i));
    auto mine = state();
    const auto lost = [&] {
        std::set<std::string> kept;
        for (const auto& place : {fs::path(L"own"), copies})
            for (const auto& entry : fs::recursive_directory_iterator(place))
                if (entry.is_regular_file() && !has(entry.path().string(), "part"))
                    kept.insert(fileBytes(entry.path()));
        std::string names;
        for (const auto& [name, content] : mine)
            if (name.starts_with("own") && !kept.contains(content))
                names += name + ' ';
        return names;
    };
    const auto is = [](const wchar_t* path, bool there) {
        return [=] { return fs::exists(path) == there; };
    };
    const std::wstring first = (copies / L"1.part").wstring();
    const struct {
        const char* name;
        const wchar_t* arguments;
        std::function<bool()> killed; // when this is so; empty for not
    } steps[] = {
        {"copying", L"restore good.vlb", is(first.c_str(), true)},
        {"deleting", L"restore good.vlb", is(L"own\\late.vlm", false)},
        {"writing", L"restore good.vlb", is(L"own\\bank.vlm", true)},
        {"restored", L"restore good.vlb", {}},
        {"undoing", L"restore --undo", is(L"own\\late.vlm", true)},
        {"undone", L"restore --undo", {}},
        {"undone twice", L"restore --undo", {}},
        {"restored again", L"restore good.vlb", {}},
        {"undone from there", L"restore --undo 7", {}},
    };
    std::map<std::string, std::map<std::string, std::string>> states;
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.killed)
            process_t(L"vlhost.exe", step.arguments).KillOnce(step.killed);
        else
            hostText(step.arguments);
        EXPECT_EQ("", lost());
        states[step.name] = state();
    }
    EXPECT_EQ(mine, states["undone"]);
    EXPECT_EQ(mine, states["undone from there"]);
    EXPECT_EQ(states["restored"], states["undone twice"]);
    const std::string list = hostText(L"restore --list-undo");
    EXPECT_TRUE(has(list, "which did not finish")) << list;
    RegDeleteKeyValueW(HKEY_CURRENT_USER, categoriesKey, L"Late"); // it would keep a copy, too
    writeFile(L"own\\only.vlm", mine["own\\only.vlm"] = "in one copy");
    for (int i = 0; i < 8; ++i)
        hostText(L"restore good.vlb");
    EXPECT_EQ("", lost());
    const auto count = std::distance(fs::directory_iterator(copies), fs::directory_iterator());
    EXPECT_TRUE(count >= 5 && count <= 7) << hostText(L"restore --list-undo");
}

TEST_F(Host, CopyOfAnEarlierVersionIsTakenOver)
{
    writeFile(userData / L"RestoreUndo\\0", "early");
    writeFile(
        userData / L"RestoreUndo\\index.json",
        R"({"folder":"C:\\vlhost test\\own\\","files":[{"path":"C:\\vlhost test\\own\\bank.vlm",)"
        R"("copy":"0","attributes":32}],"dashboard":{},"settings":{}})");
    hostText(L"restore --undo");
    EXPECT_EQ("early", fileBytes(L"own\\bank.vlm"));
    hostText(L"restore --undo");
    EXPECT_EQ("bank", fileBytes(L"own\\bank.vlm"));
}

TEST_F(Host, MarkedPathsStayInTheFoldersOfTheProfile)
{
    writeFile(L"shared\\team.vlm", "team");
    hostText(L"setting set path_alienstorage_dirs \"C:\\vlhost test\\shared\"");
    hostText(L"backup shared.vlb --force");
    hostText(L"restore shared.vlb");
    hostText(L"setting set path_alienstorage_dirs C:\\other");
    writeFile(L"shared\\team.vlm", "changed");
    const result_t refused = host(L"restore shared.vlb");
    EXPECT_EQ(1u, refused.status);
    EXPECT_TRUE(has(refused.out, "warning: C:\\vlhost test\\shared\\team.vlm")) << refused.out;
    EXPECT_EQ("changed", fileBytes(L"shared\\team.vlm"));
    hostText(L"restore shared.vlb --force");
    EXPECT_EQ("team", fileBytes(L"shared\\team.vlm"));
    hostText(L"restore --undo");
    EXPECT_EQ("changed", fileBytes(L"shared\\team.vlm"));
    hostText(L"setting set path_alienstorage_dirs \"\"");
}

TEST_F(Host, EachCommandPrintsOneDocument)
{
    hostText(L"setting set open_guard_desk_qa \"a\nb\x1B[m\"");
    EXPECT_EQ("open_guard_desk_qa: a\\nb\\x1B[m\n", hostText(L"setting get open_guard_desk_qa"));
    for (const wchar_t* arguments :
         {L"info", L"setting get open_guard_desk_qa", L"backup good.vlb --force",
          L"restore good.vlb --dry-run", L"restore good.vlb", L"restore --undo --dry-run",
          L"restore --undo", L"restore --list-undo", L"trace status", L"call get-status"}) {
        SCOPED_TRACE(utf8FromWide(arguments));
        const std::string text = hostText(std::wstring(L"--json ") + arguments);
        Json::Value document;
        Json::CharReaderBuilder strict;
        Json::CharReaderBuilder::strictMode(&strict.settings_);
        std::istringstream stream(text);
        std::string errors;
        EXPECT_TRUE(Json::parseFromStream(strict, stream, &document, &errors)) << errors << text;
        for (const auto& file : document["plan"]["files"])
            EXPECT_EQ(0u, file["path"].asString().find("C:\\vlhost test\\")) << text;
    }
}

TEST_F(Host, FailuresAreOneLineWithAHintAndAStatus)
{
    writeFile(L"text.dll", "no library");
    const std::tuple<const wchar_t*, DWORD, const char*> cases[] = {
        {L"", 2, "--help"},
        {L"restore C:\\none.vlb --secret-from 0", 2, "plugin-data"},
        {L"restore --undo 0", 2, "'0' is no number of a safety copy"},
        {L"--plugin C:\\none.dll info", 1, "--plugin names another"},
        {L"--plugin text.dll info", 1, "64-bit DLL"},
        {L"--plugin C:\\windows\\system32\\version.dll info", 1, "is this the plug-in's DLL"},
        {L"setting get no_such_key", 1, "spelt right"},
        {L"trace on --dir traces", 2, "full path"},
        {L"trace on --until 2099-12-31", 2, "further away"}, // past, for the plug-in
        {L"call get-property 12345", 1, "ERROR_UNKNOWN_PROPERTY"},
    };
    for (const auto& [arguments, status, shown] : cases) {
        const auto [got, out, err] = host(arguments);
        EXPECT_EQ(status, got) << utf8FromWide(arguments);
        EXPECT_TRUE(err.starts_with("vlhost: ") && has(err, shown)) << shown << err;
        EXPECT_EQ(err.size() - 1, err.find('\n')) << err;
    }
    hostText(L"unregister");
    EXPECT_TRUE(has(host(L"status").err, "vlhost register"));
    hostText(L"register");
}

// Only the notification of a missing set-up goes, and the dashboard's own value brings it back.
TEST_F(Host, DismissalHoldsUntilShown)
{
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(has(hostText(L"dismiss"), "level: 4"));
        EXPECT_TRUE(has(hostText(L"show"), "level: 2"));
    }
    EXPECT_TRUE(has(hostText(L"notifications"), "shown: yes"));
    constexpr wchar_t card[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\IDCard";
    setValue(HKEY_CURRENT_USER, card, L"IDCard_SS", L"\1", REG_DWORD, 4);
    EXPECT_EQ(1u, host(L"dismiss").status);
    hostText(L"show");
    RegDeleteKeyW(HKEY_CURRENT_USER, card);
}

// What vlhost console starts notes down each start and what it was started with.
TEST_F(Host, ConsoleLogsItsTarget)
{
    for (const wchar_t* item : {L"-1", L"0"})
        EXPECT_EQ(0u, process_t(L"VLUserConsole.exe",
                                std::wstring(L"--no-window --log log\\c.txt {42}:3:") + item)
                          .Result()
                          .status);
    EXPECT_TRUE(has(fileBytes(L"log\\c.txt"),
                    R"("{42}:3:-1"],"plugin":"{42}","page":"3","item":"-1","window":false})"));
}

TEST_F(Host, SecretGoesFromStandardInputToTheStoreAndNowhereElse)
{
    const std::string secret = "pässwörd of nobody";
    const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vlhost-test-ready"));
    const process_t agent(L"vlagent.exe",
                          L"--ready-event vlhost-test-ready --journal journal.jsonl");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), limit));
    const std::string out =
        hostText(L"restore good.vlb --entry plugin-data --secret-from 0", secret + "\r\n");
    EXPECT_EQ(secret + "\n", hostText(L"secret read"));
    hostText(L"restore --undo"); // the agent hears of it as it does of a restore
    agent.Stop();
    const process_t quit(L"vlagent.exe", L"--quit");
    EXPECT_TRUE(quit.Runs(300)); // until the agent has ended
    agent.GoOn();
    EXPECT_EQ(0u, quit.Result().status);
    EXPECT_EQ(0u, agent.Result().status);
    const std::string journal = fileBytes(L"journal.jsonl");
    EXPECT_TRUE(has(journal, R"("name":"WM_VL_AGENT_PMRESTOREDONE")")) << journal;
    EXPECT_FALSE(has(out, secret));
    for (const auto& entry : fs::recursive_directory_iterator(L"."))
        EXPECT_TRUE(has(entry.path().string(), "streams") || !has(fileBytes(entry.path()), secret))
            << entry.path();
    hostText(L"secret delete");
    EXPECT_EQ(1u, host(L"secret exists").status);
}

// The test's own process stands for one that traces: what it holds open is what a tracer would.
TEST_F(Host, TraceIsSwitchedAndFollowed)
{
    const std::wstring self = std::to_wstring(GetCurrentProcessId());
    const std::wstring on = L"trace on --dir \"C:\\vlhost test\\traces\" --wait " + self;
    const std::string before = hostText(L"trace status");
    EXPECT_EQ(1u, host(L"trace on --wait 99999").status);
    EXPECT_EQ(1u, host(on).status); // it hasn't the plug-in yet
    EXPECT_EQ(before, hostText(L"trace status"));
    const CLoadedModule plugin(LoadLibraryW((bin / L"VLOnlineIDs.dll").c_str()));
    EXPECT_TRUE(has(host(on + L" --timeout 1").err, "process " + utf8FromWide(self)));
    const process_t waiting(L"vlhost.exe", on);
    const fs::path name =
        L"traces\\h.x64.vlonlineids.dll~~01.02.26_at_03.04.05.006~~1." + self + L".trc3";
    writeFile(name, "");
    std::ofstream file(name);
    EXPECT_EQ(0u, waiting.Result().status) << waiting.Result().err;
    EXPECT_TRUE(has(hostText(L"trace status"), "open: yes"));
    EXPECT_EQ(1u, host(L"trace off --timeout 1 --wait " + self).status);
    file.close();
    hostText(L"trace off --wait " + self);
    EXPECT_TRUE(has(hostText(L"trace on --until 2090-12-31 --to console"),
                    "until the beginning of 2090-12-31"));
    const std::string console = hostText(L"trace status");
    static int left; // registry values that can be written until one can't; negative after that
    for (int n = 0, status = 1; status != 0; ++n) {
        SCOPED_TRACE(left = n);
        CLI::App app("", "vlhost");
        const options_t options;
        addTraceCommands(app, options);
        {
            const importHooks_t hooks(
                GetModuleHandleW(nullptr), {{"RegSetValueExW", ERROR_DISK_FULL}},
                +[](const hookedCall_t&) { return left-- == 0; });
            std::ostringstream out, err;
            status = runTool(app, {"trace", "on", "--dir", "C:\\other"}, out, err);
        }
        EXPECT_EQ(left < 0, status == 1);
        EXPECT_EQ(status == 0, console != hostText(L"trace status"));
    }
    EXPECT_TRUE(has(hostText(L"trace off"), "tracing: off"));
}

} // namespace
