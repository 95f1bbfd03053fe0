#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/module.h"
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

// value gives the type and the data of a value below the root; a key without it gives type 0.
std::pair<DWORD, std::wstring> value(const std::wstring& key, const wchar_t* name)
{
    DWORD type = 0;
    std::wstring data(512, L'\0');
    auto size = static_cast<DWORD>(data.size() * 2);
    const auto found = RegGetValueW(HKEY_LOCAL_MACHINE, (rootPath + L'\\' + key).c_str(), name,
                                    RRF_RT_ANY | RRF_NOEXPAND, &type, data.data(), &size);
    data.resize(found == ERROR_SUCCESS ? size / 2 : 0);
    return {type, data};
}

// set makes the key too.
void set(const std::wstring& key, const wchar_t* name, DWORD type, const void* data, size_t size)
{
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, data,
                              static_cast<DWORD>(size)),
              ERROR_SUCCESS);
}

const wchar_t folder[] = L"C:\\veltrano-test";
const std::filesystem::path cleanupPath = L"C:\\veltrano-test\\Cleanup.txt";

std::wstring readCleanup()
{
    std::ifstream file(cleanupPath, std::ios::binary);
    std::wstring text(8192, L'\0');
    file.read(reinterpret_cast<char*>(text.data()), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(file.gcount()) / 2);
    return text;
}

const std::wstring elevenLines =
    L"HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\\IDCard\t8\r\n"
    L"HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\t4097\tLastQLCategory\r\n"
    L"HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories\t4108\r\n"
    L"HKU\tSOFTWARE\\Veltrano\\Applications\\KRAppSettings\t4101\tOpenGuardDesk\r\n"
    L"HKU\tSOFTWARE\\Veltrano\\Applications\\KRAppSettings\t4101\tShowTrainingPrompt\r\n"
    L"HK\tSOFTWARE\\Veltrano\\Applications\\DashBoard\t4104\r\n"
    L"FILE\tVeltrano\\KRS\\Templates\\*\t4097\r\n"
    L"FILE\tVeltrano\\KRS\\VLIconCache\\*\t4097\r\n"
    L"FILE\tVeltrano\\KRS\\*\t4097\r\n"
    L"FILE\tVeltrano\\*\t4097\r\n"
    L"DIR\tVeltrano\t4096\r\n";

struct Registration : testing::Test {
    Registration()
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano");
        std::filesystem::create_directory(folder);
        std::filesystem::remove(cleanupPath);
        set(L"SOFTWARE\\Veltrano", L"VeltranoPath", REG_SZ, folder, sizeof folder);
    }
};

std::wstring failingKey; // as it is given to the call
LSTATUS WINAPI failingCreateKey(HKEY root, LPCWSTR path, DWORD, LPWSTR, DWORD, REGSAM,
                                LPSECURITY_ATTRIBUTES, PHKEY key, LPDWORD)
{
    return failingKey == path ? ERROR_ACCESS_DENIED : RegCreateKeyW(root, path, key);
}

} // namespace

TEST_F(Registration, PutsTheClassUnderItsRolesAndStopsAtAFailedOneButNotAtTheTray)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "RegCreateKeyExW",
                              reinterpret_cast<void*>(failingCreateKey));
    const struct {
        std::wstring failing;
        HRESULT status;
        size_t registered; // the first so many roles
    } cases[] = {
        {rootPath, E_ACCESSDENIED, 0},
        {appControl, E_ACCESSDENIED, 0},
        {backupRestore, E_ACCESSDENIED, 1},
        {trayIcon, S_OK, 2},
        {L"", S_OK, 3},
        {L"", S_OK, 3}, // again and again
    };
    const std::wstring path = moduleFileName(nullptr) + L'\0';
    const std::wstring versions(L"6.0\0007.0\0008.0\0", 13);
    for (const auto& c : cases) {
        failingKey = c.failing;
        EXPECT_EQ(DllRegisterServer(), c.status);
        size_t registered = 0;
        for (const auto& role : {appControl, backupRestore, trayIcon}) {
            SCOPED_TRACE(testing::Message() << &c - cases << role);
            const bool there = ++registered <= c.registered;
            EXPECT_EQ(value(role, L""), std::pair(there ? 2ul : 0ul, there ? path : L""));
            EXPECT_EQ(value(role, L"TargetShellVersions"),
                      std::pair(there ? 7ul : 0ul, there ? versions : L""));
        }
        if (c.registered < 3)
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, rootPath.c_str());
    }
}

TEST_F(Registration, TakesTheClassOutWithEmptyParentsAndLeavesOthers)
{
    EXPECT_EQ(DllUnregisterServer(), S_OK); // nothing there at all
    ASSERT_EQ(DllRegisterServer(), S_OK);
    const std::wstring other = L"UIElements\\AppControl\\{other}";
    const std::wstring keys[] = {
        appControl, L"UIElements\\BackupRestore", L"TrayIcon", other, L"UIElements", L""};
    for (const auto& key : keys)
        set(rootPath + L'\\' + key, L"mark", REG_SZ, L"x", 4); // values don't keep a key
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    for (const auto& key : keys)
        EXPECT_EQ(value(key, L"mark").first, &key - keys < 3 ? 0u : 1u) << key;
    VLKT_SDK::CUnregisterComponents registrar;
    EXPECT_EQ(registrar.RemoveKeyChain(L"UIElements", L"AppControl"), S_OK); // stops at once
    EXPECT_EQ(registrar.RemoveKeyChain(L"UIElements\\AppControl", L"{other}"), S_OK);
    for (const auto& key : keys)
        EXPECT_EQ(value(key, L"mark").first, key.empty() ? 1u : 0u) << key; // the root stays
    EXPECT_EQ(registrar.RemoveKeyChain(L"UIElements", L"gone"), static_cast<HRESULT>(0x80070002));
    EXPECT_EQ(readCleanup(), L"\xFEFF" + elevenLines + elevenLines); // appended each time
}

TEST_F(Registration, AFileWithoutTheMarkLosesItsContents)
{
    const struct {
        std::string before;
        const wchar_t* name;
        std::wstring after;
    } cases[] = {
        {"", nullptr, L"\xFEFFK\tp\t4294967295\r\n"},
        {"\xFF", L"n", L"\xFEFFK\tp\t4294967295\tn\r\n"},
        {"abcd", L"", L"\xFEFFK\tp\t4294967295\t \r\n"}, // an empty name is a blank
        {std::string("\xFE\xFF\0a", 4), nullptr, L"\xFEFFK\tp\t4294967295\r\n"},
        {std::string("\xFF\xFE\x61\0", 4), nullptr, L"\xFEFF\x61K\tp\t4294967295\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        std::ofstream(cleanupPath, std::ios::binary) << c.before;
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 0xFFFFFFFF, c.name), S_OK);
        EXPECT_EQ(readCleanup(), c.after);
    }
}

TEST_F(Registration, AFailedCleanupLineIsTracedAndReturned)
{
    const struct {
        const wchar_t* kind;
        const wchar_t* path;
        size_t size; // of the folder's value; 0 keeps the good one
        DWORD type;
        uint32_t status;
        std::wstring line;
    } cases[] = {
        {nullptr, L"p", 0, 0, 0x80070057, L"E -2147024809 "},
        {L"K", L"", 0, 0, 0x80070057, L"E -2147024809 "},
        {L"K", L"p", 9, REG_SZ, 0x8007000D, L"E -2147024883 "}, // odd length
        {L"K", L"p", 10, REG_BINARY, 0x8007000D, L"E -2147024883 "},
        {L"K", L"p", 8, REG_SZ, 0x8007000D, L"E -2147024883 "}, // not terminated
        {L"K", L"p", 10, REG_EXPAND_SZ, 0x80070003, L"E -2147024893 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        if (c.size)
            set(L"SOFTWARE\\Veltrano", L"VeltranoPath", c.type, c.size == 8 ? L"C:\\xX" : L"C:\\x",
                c.size);
        traceRecorder_t trace;
        EXPECT_EQ(AddCleanupLine(c.kind, c.path, 1, nullptr), static_cast<HRESULT>(c.status));
        EXPECT_EQ(trace.messages(), std::vector<std::wstring>{c.line});
    }
    EXPECT_EQ(DllUnregisterServer(), S_OK); // without an installation folder too
}
