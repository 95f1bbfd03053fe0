#include "host.h"
#include "shared/commandline.h"
#include "support/importhooks.h"
#include "vlhost/commands.h"

#include <set>

#include <gtest/gtest.h>

namespace {

TEST_F(Host, BackupIsEqualToTheDiskOrNotWritten)
{
    for (const std::wstring name : {L"own\\bank.vlm", L"links.txt", L"never.txt"}) {
        CFileHandle open = held(name.c_str());
        expectIn(refused(L"backup good.vlb --force"), {utf8FromWide(name).c_str()});
        open.reset();
        EXPECT_EQ(m_good, fileBytes(L"good.vlb"));
    }
}

TEST_F(Host, RestoreTouchesNothingUnlessItIsMeantAndSound)
{
    writeFile(L"cut.vlb", m_good.substr(0, m_good.size() - 1));
    writeFile(L"hostile.vlb", renamed(m_good, L"bank.vlm", L"..\\.exex"));
    change();
    const auto before = state();
    fs::create_directories(copies);
    CFileHandle open(CreateFileW((copies / L"lock").c_str(), GENERIC_READ, 7, nullptr, OPEN_ALWAYS,
                                 FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    expectIn(refused(L"restore good.vlb"), {"is another restore at work"});
    open.reset();
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
}

TEST_F(Host, FailuresAreOneLineWithAHintAndChangeNothing)
{
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
    open.reset();
    expectState(before);
    EXPECT_EQ(m_good, fileBytes(L"good.vlb"));
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
        const CTool tool("vlhost", "");
        const options_t options;
        addTraceCommands(tool, options);
        {
            const importHooks_t hooks(
                GetModuleHandleW(nullptr), {{"RegSetValueExW", ERROR_DISK_FULL}},
                +[](const hookedCall_t&) { return left-- == 0; });
            std::ostringstream out, err;
            status = runTool(tool, {"trace", "on", "--dir", "C:\\other"}, out, err);
        }
        EXPECT_EQ(left < 0, status == 1);
        EXPECT_EQ(status == 0, console != hostText(L"trace status"));
    }
    expectIn(hostText(L"trace off"), {"tracing: off"});
}

} // namespace
