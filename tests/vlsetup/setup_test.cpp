#include "vlsetup/setup.h"

#include "common/module.h"
#include "common/scoped.h"
#include "shared/commandline.h"
#include "support/files.h"
#include "support/importhooks.h"
#include "support/registry.h"
#include "support/state.h"
#include "support/texts.h"
#include "vlsetup/places.h"

#include <filesystem>
#include <numeric>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

const fs::path built = fs::path(moduleFileName(nullptr)).parent_path();
const fs::path root = L"C:\\Our Product", bin = root / L"bin", medium = L"C:\\medium";
const fs::path policyLibrary = L"C:\\windows\\system32\\VLFPApi.dll";
const std::wstring key = L"SOFTWARE\\Veltrano";
const std::wstring plugins = key + L"\\VLKT\\Plugins\\";
const std::wstring tray = plugins + L"TrayIcon\\{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring uninstallKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

// stateNow is all that an installation could have touched, except the list that the plug-in wrote.
state_t stateNow()
{
    state_t all;
    for (const std::wstring& tree :
         {key, std::wstring(L"SOFTWARE\\WOW6432Node\\Veltrano"), uninstallKey})
        addValues(all, HKEY_LOCAL_MACHINE, tree);
    for (const wchar_t* folder : {L"C:\\windows\\system32\\", L"C:\\"})
        addFiles(all, folder, 0, false);
    for (const fs::path& folder : {root, fs::path(L"C:\\Theirs"), fs::temp_directory_path()})
        addFiles(all, (folder / L"").wstring());
    std::erase_if(all, [](const auto& one) { return one.first.ends_with(L"\\Cleanup.txt"); });
    return all;
}

// expectState names what is no more as it was.
void expectState(const state_t& expected)
{
    EXPECT_EQ("", difference(stateNow(), expected));
}

std::string joined(const std::vector<std::string>& lines)
{
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

class setupTest : public testing::Test
{
protected:
    void SetUp() override
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
        fs::remove_all(root);
        fs::remove_all(L"C:\\Theirs");
        fs::remove(policyLibrary);
        fs::create_directories(root); // Cleanup.txt stays there
        fs::create_directories(medium);
        fs::copy_file(built / L"VLOnlineIDs.dll", medium / L"VLOnlineIDs.dll",
                      fs::copy_options::overwrite_existing);
        writeFile(medium / L"tool.exe", "tool 1");
        writeFile(medium / L"xx\\texts.mui", "texts");
        writeFile(medium / L"standins\\VLFPApi.dll", "stand-in");
        writeFile(medium / L"standins\\VloSet.dll", "stand-in");
        writeFile(medium / L"remove.exe", "remove");
        writeFile(medium / L"files.txt", "VLOnlineIDs.dll\r\ntool.exe\nxx/texts.mui\n"
                                         "standins/VLFPApi.dll\nstandins/VloSet.dll\n");
    }

    // foreign puts another product's things where ours would go, and beside them.
    static void foreign()
    {
        writeFile(policyLibrary, "theirs");
        writeFile(bin / L"tool.exe", "their tool");
        writeFile(bin / L"xx\\notes.txt", "notes");
        writeFile(bin / L"xx\\texts.mui", "texts"); // equal to ours
        writeFile(bin / L"VloSet.dll", "theirs");
        setValue(HKEY_LOCAL_MACHINE, key, L"VeltranoPath", L"C:\\Theirs");
        fs::create_directories(L"C:\\Theirs");
        for (const wchar_t* at : {L"\\Applications", L"\\Applications\\KRS"})
            setValue(HKEY_LOCAL_MACHINE, key + at, L"BinDir", L"C:\\Theirs\\bin", REG_EXPAND_SZ);
        setValue(HKEY_LOCAL_MACHINE, key + L"\\Branding\\Common", L"DLLPath", L"C:\\Theirs\\b.dll");
        setValue(HKEY_LOCAL_MACHINE, key + L"\\Branding\\Other", L"x", L"y", REG_BINARY, 3);
        setValue(HKEY_LOCAL_MACHINE, key + L"\\Products\\VLOnlineIDs", L"Version", L"0.9");
        setValue(HKEY_LOCAL_MACHINE, plugins + L"UIElements", L"their value", L"z");
        setValue(HKEY_LOCAL_MACHINE, tray, L"", L"C:\\Theirs\\plugin.dll", REG_EXPAND_SZ);
        makeKey(plugins + L"UIElements\\BackupRestore");
    }

    const installation_t m_asked{medium, root, {}, standIns_t::missing, false};
    const installation_t m_replacing{medium, root, L"remove.exe", standIns_t::all, true};
};

} // namespace

TEST_F(setupTest, RemovalLeavesEverythingAsItWas)
{
    for (const bool withForeign : {false, true})
        for (const installation_t& asked : {m_asked, m_replacing})
            for (const int times : {1, 2}) {
                SCOPED_TRACE(withForeign * 100 + asked.replace * 10 + times);
                SetUp();
                if (withForeign)
                    foreign();
                if (withForeign && !asked.replace)
                    fs::remove(bin / L"tool.exe"); // it would be refused
                const state_t before = stateNow();
                std::string left;
                for (int i = 0; i < times; ++i) {
                    writeFile(medium / L"tool.exe", "tool " + std::to_string(i)); // an upgrade
                    installation_t spelled = asked;
                    if (i + 1 < times)
                        spelled.root = L"C:\\OUR Product"; // the same folder
                    left = joined(install(spelled));
                }
                EXPECT_EQ(fileBytes(bin / L"tool.exe"), "tool " + std::to_string(times - 1));
                EXPECT_EQ(fileBytes(bin / L"xx\\texts.mui"), "texts");
                EXPECT_EQ(valueContent(tray, L""),
                          textValue(bin / L"VLOnlineIDs.dll", REG_EXPAND_SZ));
                EXPECT_NE(valueContent(key + L"\\Products\\VLOnlineIDs", L"Version"), "");
                const bool theirs = withForeign && !asked.replace;
                EXPECT_EQ(fileBytes(policyLibrary) + ' ' + fileBytes(bin / L"VloSet.dll"),
                          theirs ? "theirs theirs" : "stand-in stand-in");
                EXPECT_EQ(valueContent(key + L"\\Applications\\KRS", L"BinDir"),
                          theirs ? textValue(L"C:\\Theirs\\bin", REG_EXPAND_SZ) : textValue(bin));
                EXPECT_EQ(valueContent(key + L"\\Branding\\Common", L"DLLPath"),
                          textValue(theirs ? L"C:\\Theirs\\b.dll" : bin / L"Branding.dll"));
                EXPECT_EQ(left.find("VLFPApi.dll stays") != std::string::npos, theirs) << left;
                EXPECT_EQ(valueContent(uninstallKey + L"\\VLOnlineIDs", L"UninstallString").empty(),
                          asked.uninstaller.empty());
                const removed_t removed = uninstall(root);
                EXPECT_EQ(joined(removed.lines), "");
                EXPECT_TRUE(removed.complete);
                expectState(before);
                EXPECT_TRUE(fs::exists((withForeign ? L"C:\\Theirs" : root) / L"Cleanup.txt"));
            }
}

TEST_F(setupTest, NeedsAnAdministrator)
{
    const importPatch_t noRights(
        "RegOpenKeyExW", +[] { return ERROR_ACCESS_DENIED; });
    try {
        install(m_asked);
        ADD_FAILURE();
    } catch (const CToolError& error) {
        expectIn(error.what(), {"administrator"});
    }
}

TEST_F(setupTest, AFailedCallLeavesNothingHalfDone)
{
    static int left; // calls until one fails; negative when it did
    static std::string function;
    const std::string files[] = {"CopyFileW CreateDirectoryW LoadLibraryExW MoveFileExW",
                                 "DeleteFileW LoadLibraryExW MoveFileExW RemoveDirectoryW"};
    const std::string registry[] = {"RegCreateKeyExW RegSetValueExW",
                                    "RegDeleteKeyW RegDeleteValueW RegSetValueExW"};
    for (const bool removal : {false, true}) {
        bool failed = true;
        for (int n = 0; failed && !HasFailure(); ++n) {
            SCOPED_TRACE(n);
            SetUp();
            foreign();
            const state_t before = stateNow();
            if (removal)
                install(m_replacing);
            left = n, failed = false;
            try {
                auto functions = hookedFunctions(registry[removal], ERROR_NOT_ENOUGH_MEMORY);
                for (const hookedFunction_t& of : hookedFunctions(files[removal]))
                    functions.push_back(of);
                const importHooks_t hooks(
                    GetModuleHandleW(nullptr), functions, +[](const hookedCall_t& call) {
                        if (left == 0)
                            function = call.function;
                        return left-- == 0;
                    });
                if (removal)
                    failed = !uninstall(root).complete;
                else
                    install(m_replacing);
            } catch (const CToolError& error) {
                failed = true;
                expectIn(error.what(), {"as it was"});
            }
            EXPECT_EQ(failed, left < 0) << function;
            const bool again = removal && fs::exists(bin / L"VLOnlineIDs.installed.json");
            EXPECT_TRUE(!again || uninstall(root).complete) << function;
            EXPECT_EQ(removal || failed ? difference(stateNow(), before) : "", "") << function;
        }
    }
}

// The package as it is shipped, in a folder with a name that a command processor could trip over.
TEST_F(setupTest, TheScriptsInstallAndRemoveTheShippedPackage)
{
    const fs::path package = L"C:\\pack & (1)! x", folder = L"C:\\Our Product\\a & (b)! c";
    fs::copy(built / L"..\\package", package, fs::copy_options::recursive);
    const auto run = [](const fs::path& program, const std::wstring& argument, int status) {
        writeFile(L"C:\\run\\run.cmd", "@call \"" + utf8FromWide(program.native()) + "\" " +
                                           utf8FromWide(argument) + " >C:\\run\\out.txt 2>&1\r\n");
        const int got = _wsystem(L"C:\\run\\run.cmd");
        const std::string out = fileBytes(L"C:\\run\\out.txt");
        EXPECT_EQ(got, status) << out;
        return out;
    };
    run(L"cmd", L"/c echo", 0); // makes the folder for its output
    const state_t before = stateNow();
    run(package / L"install.cmd", L'"' + folder.wstring() + L'"', 0);
    { // as an installer repairs: without a console, and with nowhere to write to
        std::wstring repair = L'"' + (package / L"vlsetup.exe").wstring() + L"\" install \"" +
                              folder.wstring() + L'"';
        STARTUPINFOW mute{};
        mute.cb = sizeof mute, mute.dwFlags = STARTF_USESTDHANDLES;
        PROCESS_INFORMATION made{};
        DWORD status = 9;
        CreateProcessW(nullptr, repair.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                       nullptr, &mute, &made);
        const CKernelHandle process(made.hProcess), thread(made.hThread);
        WaitForSingleObject(made.hProcess, 60000);
        EXPECT_TRUE(GetExitCodeProcess(made.hProcess, &status) && status == 0) << status;
    }
    expectIn(
        run(built / L"vl_example_host.exe", L"", 0),
        {"plug-in " + utf8FromWide((folder / L"bin\\VLOnlineIDs.dll").wstring()), "level   2"});
    run(folder / L"bin\\uninstall.cmd", L"", 0);
    EXPECT_TRUE(fs::exists(folder / L"Cleanup.txt"));
    fs::remove_all(folder);
    expectState(before);
}
