#include "operations.h"
#include "support/importhooks.h"

#include <map>
#include <set>
#include <sstream>

// What the plug-in asks the platform for, and in which order: access masks, sharing, dispositions,
// key options, inheritance, sizes. Each distinct call stands once, where it came first.

namespace {

using Calls = operationsTest;

// The arguments that are shown, by their kinds.
const std::map<std::string, std::string> shown = [] {
    std::istringstream in(
        "CreateDirectoryW ts CreateFileMappingW -snnnt CreateFileW tnnsnn CreateMutexW snt "
        "CreateSemaphoreW snnt DeleteFileW t FindFirstFileW t FindWindowExW nntt GetDriveTypeW t "
        "GetNamedSecurityInfoW tnn ImpersonateSelf n LoadLibraryExW t-n LoadLibraryW t "
        "MapViewOfFile -nnnn OpenEventW nnt OpenFileMappingW nnt OpenMutexW nnt "
        "OpenProcessToken -n OpenSemaphoreW nnt OpenThreadToken -nn PostMessageW --nn "
        "RegCreateKeyExW ktntnn RegDeleteKeyW kt RegDeleteValueW -t RegOpenKeyExW ktnn "
        "RegSetValueExW -tnnd RegisterWindowMessageW t ReleaseSemaphore -n SetEvent - "
        "SetFilePointer -n-n SetNamedSecurityInfoW tnn SetSecurityInfo -nn SetThreadToken - "
        "ShellExecuteW -ttttn WriteFile --n _wfopen tt ");
    std::map<std::string, std::string> kinds;
    for (std::string name; in >> name;)
        in >> kinds[name];
    return kinds;
}();

// One call is shown on each line, or between two bars.
const std::string session = R"(creation:
information:
 RegOpenKeyExW HKLM {v}\Branding\Common 0 1 | LoadLibraryExW {built}\Branding.dll 2
 LoadLibraryW C:\windows\system32\VLFPApi.dll
 RegOpenKeyExW HKCU {v}\Applications\DashBoard\IDCard 0 20019
 RegOpenKeyExW HKCU {v}\Applications\DashBoard\DismissMessages\{id} 0 20019
backup:
 LoadLibraryW VLFPApi.dll | OpenThreadToken 2000000 1 | ImpersonateSelf 2
 RegOpenKeyExW HKLM {v}\Applications\KRS 0 20019 | RegOpenKeyExW HKLM {v}\Applications 0 20019
 LoadLibraryW {built}\VloSet.dll | FindFirstFileW {krs}\Templates\updata.vls
 FindFirstFileW {krs}\Templates\updata_temp.vls
 CreateFileW {krs}\Templates\updata.vls 80000000 1 3 8000000 | CreateFileMappingW 2 0 0 -
 MapViewOfFile 4 0 0 0 | GetDriveTypeW C:\ | FindFirstFileW C:\* | FindFirstFileW C:\users\*
 FindFirstFileW {user}\* | FindFirstFileW {user}\AppData\* | FindFirstFileW {user}\AppData\Roaming\*
 FindFirstFileW {user}\AppData\Roaming\Veltrano\* | FindFirstFileW {krs}\*
 FindFirstFileW {krs}\Cache\* | CreateDirectoryW {krs}\Cache
 GetNamedSecurityInfoW {krs}\Cache\ 1 4 | OpenThreadToken 8 1 | OpenProcessToken 8
 SetNamedSecurityInfoW {krs}\Cache\ 1 4 | FindFirstFileW {krs}\Templates\*
 GetNamedSecurityInfoW {krs}\Templates\ 1 4 | SetNamedSecurityInfoW {krs}\Templates\ 1 4
 FindFirstFileW C:\VL\templates\*.vlm | FindFirstFileW {krs}\Cache\*.vlm
 FindFirstFileW {krs}\Templates\*.vlm | CreateFileW {krs}\Templates\bank.vlm 80000000 1 3 8000000
 CreateFileW {krs}\Templates\updata_temp.vls 80000000 1 3 8000000
 FindFirstFileW {krs}\QuickLinks.txt | CreateFileW {krs}\QuickLinks.txt 80000000 1 3 8000000
 FindFirstFileW {krs}\Templates\bank.vlm
 RegOpenKeyExW HKCU {v}\Applications\DashBoard\QLCategories 0 20019
 CreateFileW {krs}\DontPrompt.txt 80000000 1 3 8000000
restore:
 DeleteFileW {krs}\Templates\bank.vlm | FindFirstFileW {krs}\Templates\*.vls
 DeleteFileW {krs}\Templates\updata.vls | DeleteFileW {krs}\QuickLinks.txt
 CreateFileW {krs}\Templates\new.vlm 40000000 0 2 80 | WriteFile 3
 CreateFileW {krs}\Templates\bank.vlm 40000000 0 2 80 | WriteFile 4
 CreateFileW {krs}\Templates\updata.vls 40000000 0 2 80 | WriteFile 5
 GetNamedSecurityInfoW {krs} 1 4 | SetNamedSecurityInfoW {krs} 1 4
 _wfopen {krs}\QuickLinks.txt w+t | RegDeleteKeyW HKCU {v}\Applications\DashBoard\QLCategories
 RegOpenKeyExW HKCU {v}\Applications\DashBoard 0 2001f
 RegCreateKeyExW HKCU {v}\Applications\DashBoard\QLCategories 0 - 0 2001f
 RegSetValueExW Fun 0 1 new; | RegSetValueExW show_training_prompt 0 1 1;
 RegSetValueExW open_guard_desk_qa 0 1 K; | FindWindowExW 0 0 Veltrano Pro Agent Veltrano Pro Agent
 RegisterWindowMessageW WM_VL_AGENT_PMRESTOREDONE | PostMessageW 1 2
pluginData:
 DeleteFileW {krs}\Templates\new.vlm | RegSetValueExW LastQLCategory 0 1 ;
 CreateFileW {krs}\DontPrompt.txt 40000000 0 2 80 | WriteFile 6
 RegisterWindowMessageW WM_VL_AGENT_PMRESTORE2DONE | OpenSemaphoreW 100002 0 VLMAX_NIPC_MUTEX
 OpenFileMappingW 2 0 VLMAX_NIPC_BUFFER | MapViewOfFile 2 0 0 0
 OpenEventW 100000 0 VLMAX_NIPC_BUFFER_READY | OpenEventW 2 0 VLMAX_NIPC_DATA_READY
 CreateFileMappingW inherit:0 4 0 1 VLTEMPLATE | SetSecurityInfo 6 10 | SetEvent
 ReleaseSemaphore 1
status:
 RegOpenKeyExW HKCU {v}\Applications\DashBoard\IDCard 0 20006
notification:
 RegCreateKeyExW HKCU {v}\Applications\DashBoard\DismissMessages\{id} 0 - 0 2001f
 RegSetValueExW 2 0 4 0 | RegOpenKeyExW HKLM {v}\Applications 0 20119
 ShellExecuteW - {built}\VLUserConsole.exe {id}:0:0 - 1
registration:
 RegCreateKeyExW HKLM {v}\VLKT\Plugins 0 - 0 20006
 RegCreateKeyExW key UIElements\AppControl\{id} 0 - 0 20006
 RegSetValueExW  0 2 {built}\VLOnlineIDs.dll; | RegSetValueExW TargetShellVersions 0 7 6.0;7.0;8.0;;
 RegCreateKeyExW key UIElements\BackupRestore\{id} 0 - 0 20006
 RegCreateKeyExW key TrayIcon\{id} 0 - 0 20006 | RegOpenKeyExW HKLM {v} 0 20119
 CreateFileW C:\VL\Cleanup.txt c0000000 0 4 80 | CreateFileW C:\VL\Cleanup.txt 40000000 0 2 80
 WriteFile 2 | SetFilePointer 0 2 | WriteFile 6e | WriteFile 84 | WriteFile 80 | WriteFile 8a
 WriteFile 94 | WriteFile 64 | WriteFile 48 | WriteFile 4c | WriteFile 34 | WriteFile 2c
 WriteFile 26 | RegOpenKeyExW HKLM {v}\VLKT\Plugins 0 20006
 RegOpenKeyExW key UIElements\BackupRestore\{id} 0 20019
 RegDeleteKeyW key UIElements\BackupRestore\{id}
 RegOpenKeyExW key UIElements\BackupRestore 0 20019 | RegDeleteKeyW key UIElements\BackupRestore
 RegOpenKeyExW key UIElements 0 20019 | RegOpenKeyExW key UIElements\AppControl\{id} 0 20019
 RegDeleteKeyW key UIElements\AppControl\{id} | RegOpenKeyExW key UIElements\AppControl 0 20019
 RegDeleteKeyW key UIElements\AppControl | RegDeleteKeyW key UIElements
 RegOpenKeyExW key TrayIcon\{id} 0 20019 | RegDeleteKeyW key TrayIcon\{id}
 RegOpenKeyExW key TrayIcon 0 20019 | RegDeleteKeyW key TrayIcon
)";

std::vector<std::string> seen;

bool note(const hookedCall_t& call)
{
    seen.push_back(call.shown(shown.at(call.function)));
    return std::string_view("ShellExecuteW") == call.function; // opens nothing
}

TEST_F(Calls, OfASessionAreTheseInThisOrder)
{
    setTracing(0);
    const CLoadedModule settings(LoadLibraryW((m_built / L"VloSet.dll").c_str()));
    const plugin_t plugin;
    std::vector<hookedFunction_t> functions;
    for (const auto& [name, kinds] : shown)
        functions.push_back({name});
    const importHooks_t own(GetModuleHandleW(L"VLOnlineIDs.dll"), functions, note);
    const importHooks_t settingsSet(settings.get(), {{"RegSetValueExW"}}, note);
    std::string all;
    std::set<std::string> before;
    for (const std::string name : {"creation", "information", "backup", "restore", "pluginData",
                                   "status", "notification", "registration"}) {
        seen.clear();
        EXPECT_EQ(S_OK, run(plugin, name).statuses[0]) << name;
        all += name + ":\n";
        for (const std::string& line : seen)
            if (before.insert(line).second)
                all += ' ' + line + '\n';
    }
    replaceAll(all, utf8FromWide(m_krs.wstring()), "{krs}");
    replaceAll(all, utf8FromWide(_wgetenv(L"USERPROFILE")), "{user}");
    replaceAll(all, utf8FromWide(m_built.wstring()), "{built}");
    replaceAll(all, "SOFTWARE\\Veltrano", "{v}");
    replaceAll(all, "{42F9948B-B690-4325-A073-63A8BF31FF32}", "{id}");
    std::string expected = session;
    replaceAll(expected, " | ", "\n ");
    EXPECT_EQ(expected, all);
}

} // namespace
