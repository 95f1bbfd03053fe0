#include "host.h"
#include "shared/commandline.h"
#include "support/importhooks.h"
#include "vlhost/commands.h"

#include <functional>
#include <set>

#include <gtest/gtest.h>

namespace {

TEST_F(Host, BackupIsEqualToTheDiskOrNotWritten)
{
    refused(L"backup good.vlb"); // not without --force
    const processResult_t piped = host(L"backup -");
    EXPECT_EQ(m_good, piped.out);
    for (const std::wstring option : {L"--checksum", L"--force"}) { // which keeps one right
        hostText(L"backup summed.vlb " + option);
        expectIn(fileBytes(L"summed.vlb.sha256"), {" summed.vlb\n"});
        writeFile(L"summed.vlb.sha256", "of another");
    }
    refused(L"backup summed.vlb --checksum");
    expectIn(piped.err, {"2 templates and 1 data file, equal to the disk; 1 quick link; "
                         "1 category; settings"});
    writeFile(L"own\\nothing.vlm", "");
    expectIn(host(L"backup warned.vlb --force").err, {"vlhost: warning: ", "nothing.vlm"});
    EXPECT_TRUE(fs::remove(L"own\\nothing.vlm") && fs::exists(L"warned.vlb"));
    CFileHandle open;
    const std::pair<const char*, std::function<void()>> faults[] = {
        {"bank.vlm", [&] { open = held(L"own\\bank.vlm"); }},
        {"links.txt", [&] { open = held(L"links.txt"); }},
        {"never.txt", [&] { open = held(L"never.txt"); }},
        // Work comes after a value that is no text.
        {"Work", [] { setValue(HKEY_CURRENT_USER, categoriesKey, L"Odd", L"", REG_DWORD, 4); }},
        {"folder.vlm", [] { fs::create_directory(L"own\\folder.vlm"); }},
        {"VloSet.dll", [] { setBin(L"C:\\none"); }},
        {"vlhost trace on", [] { setBin(), fs::remove_all(own); }},
    };
    for (const auto& [shown, make] : faults) {
        SCOPED_TRACE(shown);
        make();
        expectIn(refused(L"backup good.vlb --force"), {shown});
        open.reset();
        EXPECT_EQ(m_good, fileBytes(L"good.vlb"));
    }
}

TEST_F(Host, RestoreTouchesNothingUnlessItIsMeantAndSound)
{
    writeFile(L"cut.vlb", m_good.substr(0, m_good.size() - 1));
    writeFile(L"hostile.vlb", renamed(m_good, L"bank.vlm", L"..\\.exex"));
    writeFile(L"steering.vlb", renamed(m_good, L"bank.vlm", L"\n\x1B[m.vlm"));
    change();
    const auto before = state();
    fs::create_directories(copies);
    CFileHandle open(CreateFileW((copies / L"lock").c_str(), GENERIC_READ, 7, nullptr, OPEN_ALWAYS,
                                 FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    expectIn(refused(L"restore good.vlb"), {"is another restore at work"});
    open.reset();
    expectIn(hostText(L"restore --dry-run good.vlb"),
             {"delete           4  C:\\vlhost test\\own\\late.vlm",
              "add              4  C:\\vlhost test\\own\\bank.vlm",
              "same             4  C:\\vlhost test\\own\\Köln.vlm",
              "change           5  C:\\vlhost test\\own\\updata.vls",
              "1, change C:\\vlhost test\\links.txt", "nothing was done"});
    const processResult_t steering = host(L"restore --dry-run steering.vlb");
    expectIn(steering.out, {"own\\\\n\\x1B[m.vlm"});
    EXPECT_FALSE(has(steering.out + steering.err, "\x1B"));
    open = held(L"own\\Köln.vlm"); // so that no safety copy can be made
    expectIn(refused(L"restore good.vlb"), {"nothing was touched"});
    open.reset();
    for (const wchar_t* wrong : {L"cut.vlb", L"cut.vlb --force", L"hostile.vlb"})
        refused(std::wstring(L"restore ") + wrong);
    EXPECT_EQ(1u, host(L"restore good.vlb --entry plugin-data --secret-from 0", "x").status)
        << "without an agent";
    expectState(before);
}

TEST_F(Host, UndoCanBeTriedAndBringsBackAttributes)
{
    std::string failing = m_good; // at its settings, when all else is back
    writeFile(L"failing.vlb", failing.replace(failing.find("\"Ctrl+1\""), 8, "12345678"));
    change();
    const fs::path file = L"own\\late.vlm"; // that the plug-in can't delete
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(L"own\\Köln.vlm", FILE_ATTRIBUTE_HIDDEN); // which comes back plain
    const auto before = state();
    refused(L"restore failing.vlb --force"); // it is undone with the one that follows
    expectIn(host(L"restore good.vlb --entry 1").out, {"late.vlm: was not deleted"});
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    fs::remove(file);
    const auto restored = state();
    hostText(L"restore --undo --dry-run");
    expectState(restored);
    hostText(L"restore --undo");
    expectState(before);
    EXPECT_TRUE(GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(GetFileAttributesW(L"own\\Köln.vlm") & FILE_ATTRIBUTE_HIDDEN);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(Host, EveryFileThatAnyRestoreReplacedIsInSomeCopy)
{
    change();
    for (int i = 0; i < 260; ++i) // more than one folder of a copy holds
        writeFile(own + L"my" + std::to_wstring(i) + L".vlm", "mine " + std::to_string(i));
    const auto first = state();
    hostText(L"restore good.vlb");
    RegDeleteKeyValueW(HKEY_CURRENT_USER, categoriesKey.c_str(), L"Late"); // it keeps a copy, too
    setValue(HKEY_CURRENT_USER, categoriesKey, L"Lone", L"lone");
    hostText(L"restore good.vlb");
    auto mine = first;
    writeFile(L"own\\only.vlm", mine[own + L"only.vlm"] = "in one copy");
    for (int i = 0; i < 8; ++i)
        hostText(L"restore good.vlb");
    std::set<std::string> kept;
    for (const auto& place : {fs::path(own), copies})
        for (const auto& entry : fs::recursive_directory_iterator(place))
            if (entry.is_regular_file())
                kept.insert(fileBytes(entry.path()));
    for (const auto& [name, content] : mine)
        EXPECT_TRUE(!name.starts_with(own) || name.ends_with(L'\\') || kept.contains(content))
            << utf8FromWide(name);
    const auto count = std::distance(fs::directory_iterator(copies), fs::directory_iterator());
    EXPECT_TRUE(count >= 5 && count <= 8) << hostText(L"restore --list-undo");
    EXPECT_TRUE(fs::exists(copies / L"2")) << "it alone has a category";
    fs::remove_all(own); // an undo makes it again
    hostText(L"restore --undo 1");
    expectState(first);
    const std::string list = hostText(L"restore --list-undo");
    EXPECT_LT(list.find("before undoing with copy 1"), list.find("before a restore"));
    for (const auto& entry : fs::recursive_directory_iterator(copies))
        if (entry.path().extension() != L".json" && entry.is_regular_file())
            fs::remove(entry.path());
    expectIn(host(L"restore --list-undo").err, {"is damaged"});
}

TEST_F(Host, CopyOfAnEarlierVersionIsTakenOver)
{
    fs::create_directories(copies / L"9.dropped"); // half removed
    writeFile(userData / L"RestoreUndo\\0", "early");
    writeFile(
        userData / L"RestoreUndo\\index.json",
        R"({"folder":"C:\\vlhost test\\own\\","files":[{"path":"C:\\vlhost test\\own\\bank.vlm",)"
        R"("copy":"0","attributes":32}],"dashboard":{},"settings":{}})");
    for (const char* content : {"early", "bank"}) {
        hostText(L"restore --undo");
        EXPECT_EQ(content, fileBytes(L"own\\bank.vlm"));
    }
    EXPECT_FALSE(fs::exists(copies / L"9.dropped"));
}

TEST_F(Host, MarkedPathsStayInTheFoldersOfTheProfile)
{
    writeFile(L"shared\\team.vlm", "team");
    hostText(L"setting set path_alienstorage_dirs \"C:\\vlhost test\\shared\"");
    hostText(L"backup shared.vlb --force");
    hostText(L"restore shared.vlb");
    hostText(L"setting set path_alienstorage_dirs C:\\other");
    writeFile(L"shared\\team.vlm", "changed");
    expectIn(refused(L"restore shared.vlb"), {"warning: C:\\vlhost test\\shared\\team.vlm"});
    EXPECT_EQ("changed", fileBytes(L"shared\\team.vlm"));
    hostText(L"restore shared.vlb --force");
    EXPECT_EQ("team", fileBytes(L"shared\\team.vlm"));
    hostText(L"restore --undo");
    EXPECT_EQ("changed", fileBytes(L"shared\\team.vlm"));
    hostText(L"setting set path_alienstorage_dirs \"\"");
}

TEST_F(Host, FailuresAreOneLineWithAHintAndChangeNothing)
{
    writeFile(L"text.dll", "no library");
    writeFile(L"cut.vlb", m_good.substr(0, m_good.size() / 2));
    writeFile(L"text.vlb", "no backup");
    const auto before = state();
    CFileHandle open = held(L"never.txt");
    for (const std::wstring command : {L"restore", L"restore --force", L"drill", L"drill --json"}) {
        for (const wchar_t* input :
             {L" none.vlb", L" own", L" cut.vlb", L" text.vlb", L" never.txt"})
            expectOneLine(command + input, 1);
        for (const wchar_t* line : {L" good.vlb --unknown", L""})
            expectOneLine(command + line, 2);
    }
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
        {L"trace on --until 2027-02-31", 2, "is no day"},
        {L"backup own", 1, "folder"},
        {L"bundle own", 1, "folder"},
        {L"backup good.vlb", 1, "--force"},
        {L"bundle good.vlb", 1, "--force"},
        {L"backup none\\x.vlb", 1, "folder"},
        {L"bundle none\\x.zip", 1, "folder"},
        {L"bundle", 2, "--help"},
        {L"doctor x", 2, "--help"},
    };
    open.reset();
    for (const auto& [arguments, status, part] : cases)
        expectOneLine(arguments, status, part);
    expectIn(refused(L"call get-property 12345"), {"ERROR_UNKNOWN_PROPERTY"});
    expectState(before);
    EXPECT_EQ(m_good, fileBytes(L"good.vlb"));
    hostText(L"unregister");
    expectOneLine(L"status", 1, "vlhost register");
    hostText(L"register");
}

TEST_F(Host, CommandsSayWhatTheyDid)
{
    const std::pair<const wchar_t*, const char*> session[] = {
        {L"setting set open_guard_desk_qa \"a\nb\x1B[m\"", ""},
        {L"setting get open_guard_desk_qa", "open_guard_desk_qa: a\\nb\\x1B[m\n"},
        {L"call get-property 101 --notification 1", ""}, // the last one
        {L"dismiss", "level: 4"},
        {L"show", "level: 2"}, // the dashboard's own value brings it back
        {L"dismiss", "level: 4"},
        {L"show", "level: 2"},
        {L"notifications", "shown: yes"},
    };
    for (const auto& [command, part] : session)
        expectIn(hostText(command), {part});
    setValue(HKEY_CURRENT_USER, dashboardKey + L"\\IDCard", L"IDCard_SS", L"\1", REG_DWORD, 4);
    refused(L"dismiss"); // only the notification of a missing set-up goes
    hostText(L"show");
}

// What vlhost console starts notes down each start and what it was started with.
TEST_F(Host, ConsoleLogsItsTarget)
{
    for (const wchar_t* item : {L"-1", L"0"})
        process_t(bin / L"VLUserConsole.exe",
                  std::wstring(L"--no-window --log log\\c.txt {42}:3:") + item)
            .result();
    expectIn(fileBytes(L"log\\c.txt"),
             {R"("{42}:3:-1"],"plugin":"{42}","page":"3","item":"-1","window":false})"});
}

TEST_F(Host, SecretGoesFromStandardInputToTheStoreAndNowhereElse)
{
    const std::string secret = "pässwörd of nobody";
    const agent_t agent;
    const std::string out =
        hostText(L"restore good.vlb --entry plugin-data --secret-from 0", secret + "\r\n");
    EXPECT_EQ(secret + "\n", hostText(L"secret read"));
    hostText(L"restore --undo"); // the agent hears of it as it does of a restore
    agent.process->stop();
    const process_t quit(bin / L"vlagent.exe", L"--quit");
    EXPECT_TRUE(quit.runs(300)); // until the agent has ended
    agent.process->goOn();
    EXPECT_EQ(0u, quit.result().status + agent.process->result().status);
    expectIn(fileBytes(L"journal.jsonl"), {R"("name":"WM_VL_AGENT_PMRESTOREDONE")"});
    EXPECT_FALSE(has(out, secret));
    for (const auto& entry : fs::recursive_directory_iterator(L"."))
        EXPECT_FALSE(has(fileBytes(entry.path()), secret)) << entry.path();
    hostText(L"secret delete");
    refused(L"secret exists");
}

// The test's own process stands for one that traces: what it holds open is what a tracer would.
TEST_F(Host, TraceIsSwitchedAndFollowed)
{
    const std::wstring self = std::to_wstring(GetCurrentProcessId());
    const std::wstring on = L"trace on --dir \"C:\\vlhost test\\traces\" --wait " + self;
    setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", L"DoTrace", L"\xFF", REG_DWORD, 4);
    const std::string before = hostText(L"trace status");
    expectIn(before, {"tracing: off"}); // the switch has run out
    refused(L"trace on --wait 99999");
    refused(on); // it hasn't the plug-in yet
    EXPECT_EQ(before, hostText(L"trace status"));
    const CLoadedModule plugin(LoadLibraryW((bin / L"VLOnlineIDs.dll").c_str()));
    const std::ofstream other(
        fs::path(L"traces\\h.x64.other.dll~~01.02.26_at_03.04.05.006~~1." + self + L".trc3"));
    EXPECT_TRUE(has(host(on + L" --timeout 1").err, "process " + utf8FromWide(self)));
    const process_t waiting(bin / L"vlhost.exe", on);
    const fs::path name =
        L"traces\\h.x64.vlonlineids.dll~~01.02.26_at_03.04.05.006~~1." + self + L".trc3";
    writeFile(name, "");
    std::ofstream file(name);
    EXPECT_EQ(0u, waiting.result().status) << waiting.result().err;
    expectIn(hostText(L"trace status"), {"open: yes"});
    refused(L"trace off --timeout 1 --wait " + self);
    file.close();
    hostText(L"trace off --wait " + self);
    expectIn(hostText(L"trace on --until 2090-12-31 --to console"),
             {"until the beginning of 2090-12-31"});
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
    setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", L"TracePathLow", L"C:\\low");
    expectIn(hostText(L"trace on --dir C:\\third"), {"folder: C:\\third"});
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", L"TracePathLow");
    expectIn(hostText(L"trace off"), {"tracing: off"});
}

} // namespace
