#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "plugin/cleanup.h"
#include "plugin/registrar.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"

STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();

namespace {

const std::wstring rootPath = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";
const std::wstring classText = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring appControl = L"UIElements\\AppControl\\" + classText;
const std::wstring backupRestore = L"UIElements\\BackupRestore\\" + classText;
const std::wstring trayIcon = L"TrayIcon\\" + classText;

// has tells whether a key below the root has its default value.
bool has(const std::wstring& key)
{
    return RegGetValueW(HKEY_LOCAL_MACHINE, (rootPath + L'\\' + key).c_str(), L"", RRF_RT_ANY,
                        nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

void set(const std::wstring& key, const wchar_t* name, DWORD type, const wchar_t* data, DWORD size)
{
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, data, size); // makes the key too
}

std::wstring failingKey; // as it is given to the call
LSTATUS WINAPI failingCreateKey(HKEY root, LPCWSTR path, DWORD, LPWSTR, DWORD, REGSAM,
                                LPSECURITY_ATTRIBUTES, PHKEY key, LPDWORD)
{
    return failingKey == path ? ERROR_ACCESS_DENIED : RegCreateKeyW(root, path, key);
}

} // namespace

TEST(Registration, StopsAtAFailedRoleButNotAtTheTrayAndLeavesNoEmptyParents)
{
    const importPatch_t patch("RegCreateKeyExW", failingCreateKey);
    const struct {
        std::wstring failing;
        HRESULT status;
        int registered; // the first so many roles
    } cases[] = {{rootPath, E_ACCESSDENIED, 0},
                 {appControl, E_ACCESSDENIED, 0},
                 {backupRestore, E_ACCESSDENIED, 1},
                 {trayIcon, S_OK, 2}};
    for (const auto& c : cases) {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, rootPath.c_str());
        failingKey = c.failing;
        EXPECT_EQ(DllRegisterServer(), c.status);
        EXPECT_EQ(has(appControl) + has(backupRestore) + has(trayIcon), c.registered) << c.failing;
    }
    set(rootPath + L"\\UIElements", L"", REG_SZ, L"", 2);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_FALSE(has(L"UIElements")); // values alone don't keep a key
    for (const wchar_t* key : {L"\\TrayIcon\\own", L"\\TrayIcon\\other"})
        set(rootPath + key, L"", REG_SZ, L"", 2);
    EXPECT_EQ(VLKT_SDK::CUnregisterComponents().RemoveKeyChain(L"TrayIcon", L"own"), S_OK);
    EXPECT_EQ(has(L"TrayIcon\\own") * 2 + has(L"TrayIcon\\other"), 1); // stops at another's
}

TEST(Registration, ACleanupLineIsAppendedToAFileWithTheMarkOrIsTracedAsFailed)
{
    set(L"SOFTWARE\\Veltrano", L"VeltranoPath", REG_SZ, L"C:\\", 8);
    const std::pair<std::string, std::wstring> files[] = {
        {"\xFF", L"\xFEFFK\tp\t4294967295\t \r\n"},
        {std::string("\xFE\xFF\0a", 4), L"\xFEFFK\tp\t4294967295\t \r\n"},
        {std::string("\xFF\xFE\x61\0", 4), L"\xFEFF\x61K\tp\t4294967295\t \r\n"},
    };
    for (const auto& [before, after] : files) {
        std::ofstream(L"C:\\Cleanup.txt", std::ios::binary) << before;
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 0xFFFFFFFF, L""), S_OK); // an empty name is a blank
        std::wstring text(99, L'\0');
        std::ifstream file(L"C:\\Cleanup.txt", std::ios::binary);
        file.read(reinterpret_cast<char*>(text.data()), 198);
        EXPECT_EQ(text.substr(0, static_cast<size_t>(file.gcount()) / 2), after);
    }
    EXPECT_EQ(AddCleanupLine(nullptr, L"p", 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(AddCleanupLine(L"K", L"", 1, nullptr), E_INVALIDARG);
    const struct {
        DWORD type;
        const wchar_t* folder;
        DWORD size;
        uint32_t status;
    } folders[] = {
        // Odd length, no text, not terminated, not there.
        {REG_SZ, L"C:\\x", 9, 0x8007000D},
        {REG_BINARY, L"C:\\", 8, 0x8007000D},
        {REG_SZ, L"C:\\xX", 8, 0x8007000D},
        {REG_EXPAND_SZ, L"C:\\no", 12, 0x80070003},
    };
    for (const auto& c : folders) {
        set(L"SOFTWARE\\Veltrano", L"VeltranoPath", c.type, c.folder, c.size);
        traceRecorder_t trace;
        const auto status = static_cast<HRESULT>(c.status);
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 1, nullptr), status) << c.folder;
        EXPECT_EQ(trace.messages(), std::vector{L"E " + std::to_wstring(status) + L" "});
    }
}
