#include "counted.h"
#include "plugin/cleanup.h"
#include "plugin/registrar.h"
#include "support/files.h"
#include "support/importhooks.h"
#include "support/registry.h"
#include "support/tracerecorder.h"
#include "vlonlineids.h"

#include <windows.h>
#include <olectl.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

using VLONLINEIDSLib::CLSID_CVLKTPages;

namespace {

const std::wstring rootPath = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";
const std::wstring appControl = L"UIElements\\AppControl\\" + classText;
const std::wstring backupRestore = L"UIElements\\BackupRestore\\" + classText;
const std::wstring trayIcon = L"TrayIcon\\" + classText;

// has says whether a key below the root has its default value.
bool has(const std::wstring& key)
{
    return RegGetValueW(HKEY_LOCAL_MACHINE, (rootPath + L'\\' + key).c_str(), L"", RRF_RT_ANY,
                        nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

} // namespace

TEST(Registration, StopsAtAFailedRoleButNotAtTheTrayAndLeavesNoEmptyParents)
{
    static std::wstring failing;
    const importHooks_t hooks(GetModuleHandleW(nullptr), // of a positive error the low half counts
                              {{"RegCreateKeyExW", 0x10005}},
                              [](const hookedCall_t& call) { return failing == call.text(1); });
    const std::tuple<std::wstring, HRESULT, int> cases[] = {
        // The first so many roles are registered.
        {rootPath, E_ACCESSDENIED, 0},
        {appControl, E_ACCESSDENIED, 0},
        {backupRestore, E_ACCESSDENIED, 1},
        {trayIcon, S_OK, 2},
        {L"", S_OK, 3}};
    for (const auto& [path, status, registered] : cases) {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, rootPath.c_str());
        failing = path;
        EXPECT_EQ(DllRegisterServer(), status);
        EXPECT_EQ(has(appControl) + has(backupRestore) + has(trayIcon), registered) << path;
    }
    const std::wstring other = L"TrayIcon\\other";
    for (const std::wstring& key : {other, std::wstring(L"UIElements"), std::wstring(L"TrayIcon")})
        setValue(HKEY_LOCAL_MACHINE, (rootPath + L'\\').append(key), L"", L"");
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    // Values alone don't keep a key, but another's key below it does.
    EXPECT_FALSE(has(L"UIElements") || has(appControl) || has(trayIcon));
    EXPECT_TRUE(has(L"TrayIcon") && has(other));
    EXPECT_EQ(VLKT_SDK::CUnregisterComponents().UnregisterComponent(L"TrayIcon", CLSID_CVLKTPages),
              HRESULT(0x80070002)); // nothing is left
}

TEST(Registration, ACleanupLineIsAppendedToAFileWithTheMarkOrIsTracedAsFailed)
{
    setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano", L"VeltranoPath", L"C:\\");
    const std::pair<std::string, std::wstring> files[] = {
        {"\xFF", L"\xFEFFK\tp\t4294967295\t \r\n"},
        {std::string("\xFE\xFF\0a", 4), L"\xFEFFK\tp\t4294967295\t \r\n"},
        {std::string("\xFF\xFE\x61\0", 4), L"\xFEFF\x61K\tp\t4294967295\t \r\n"},
    };
    for (const auto& [before, after] : files) {
        writeFile(L"C:\\Cleanup.txt", before);
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 0xFFFFFFFF, L""), S_OK); // an empty name is a blank
        const std::string text = fileBytes(L"C:\\Cleanup.txt");
        EXPECT_EQ(text, std::string(reinterpret_cast<const char*>(after.data()), after.size() * 2));
    }
    const std::tuple<const wchar_t*, DWORD, DWORD, uint32_t> folders[] = {
        // Not terminated, nothing at all, not there.
        {L"C:\\xX", REG_SZ, 8, 0x8007000D},
        {nullptr, REG_SZ, 0, 0x8007000D},
        {L"C:\\no", REG_EXPAND_SZ, 12, 0x80070003}};
    for (const auto& [folder, type, size, code] : folders) {
        SCOPED_TRACE(code);
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano", L"VeltranoPath", type, folder,
                        size);
        traceRecorder_t trace;
        const auto status = static_cast<HRESULT>(code);
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 1, nullptr), status);
        EXPECT_EQ(trace.joined(), L"|E " + std::to_wstring(status) + L" ");
    }
}
