#include <process.h>

#include "installation.h"

namespace {

constexpr wchar_t pluginsKey[] = LR"(SOFTWARE\Veltrano\VLKT\Plugins)";
constexpr char classText[] = "{42F9948B-B690-4325-A073-63A8BF31FF32}";

// A key's whole tree: each key in a line, and each value's name, type and bytes, where | is a zero.
std::string treeOf(const std::wstring& path)
{
    std::string tree;
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, key.put()))
        return "none\n";
    char name[300], data[600];
    DWORD length = 300, size = sizeof data, type = 0;
    for (DWORD i = 0; !RegEnumValueA(key.get(), i, name, &length, nullptr, &type,
                                     reinterpret_cast<BYTE*>(data), &size);
         ++i, length = 300, size = sizeof data) {
        std::replace(data, data + size, '\0', '|');
        tree += " " + std::string(name) + "=" + std::to_string(type) + ":" +
                std::string(data, size) + "\n";
    }
    wchar_t child[300];
    for (DWORD i = 0; !RegEnumKeyW(key.get(), i, child, 300); ++i)
        tree += fs::path(child).string() + "\n" + treeOf(path + L'\\' + child);
    return tree;
}

using Registration = installedTest;

TEST_F(Registration, ThePlatformsOwnToolRegistersAndUnregistersInAnyOrder)
{
    const fs::path dll = m_built / L"VLOnlineIDs.dll";
    const std::string entry = std::string(classText) + "\n =2:" + dll.string() +
                              "|\n TargetShellVersions=7:6.0|7.0|8.0||\n";
    const std::string all =
        "TrayIcon\n" + entry + "UIElements\nAppControl\n" + entry + "BackupRestore\n" + entry;
    std::wstring lines;
    for (const std::string line : cleanupLines)
        lines += std::wstring(line.begin(), line.end()) + L"\r\n";
    const struct {
        const wchar_t* option;
        std::string tree;
    } steps[] = {{L"/u", "none\n"},
                 {L"/s", all},
                 {L"/s", all},
                 {L"/u", ""},
                 {L"/u", ""},
                 {L"/s", all},
                 {L"/u", "UIElements\nAppControl\n{other}\n =1:|\n"}};
    std::wstring cleanup = L"\uFEFF";
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        if (&step == std::end(steps) - 1)
            setText(HKEY_LOCAL_MACHINE,
                    pluginsKey + std::wstring(LR"(\UIElements\AppControl\{other})"), nullptr, L"");
        EXPECT_EQ(0, _wspawnl(_P_WAIT, LR"(C:\windows\system32\regsvr32.exe)", L"regsvr32", L"/s",
                              step.option, dll.c_str(), nullptr));
        EXPECT_EQ(step.tree, treeOf(pluginsKey));
        cleanup += step.option == std::wstring(L"/u") ? lines : L"";
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(cleanup.data()), cleanup.size() * 2),
                  fileContents(m_root / L"Cleanup.txt"));
    }
}

} // namespace
