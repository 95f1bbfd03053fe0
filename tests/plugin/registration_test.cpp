#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/module.h"
#include "common/scoped.h"
#include "plugin/cleanup.h"
#include "plugin/registrar.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"
#include "vlonlineids.h"

STDAPI DllRegisterServer();
STDAPI DllUnregisterServer();

namespace {

constexpr wchar_t rootPath[] = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";
constexpr wchar_t classText[] = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring appControl = std::wstring(L"UIElements\\AppControl\\") + classText;
const std::wstring backupRestore = std::wstring(L"UIElements\\BackupRestore\\") + classText;
const std::wstring trayIcon = std::wstring(L"TrayIcon\\") + classText;

using bytes = std::vector<BYTE>;

bytes bytesOf(const void* data, size_t size)
{
    const auto* first = static_cast<const BYTE*>(data);
    return bytes(first, first + size);
}

bool keyExists(const std::wstring& path)
{
    CRegistryKey key;
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, (std::wstring(rootPath) + L'\\' + path).c_str(), 0,
                         KEY_READ, key.put()) == ERROR_SUCCESS;
}

// value gives "type: bytes" so that one comparison sees both.
std::pair<DWORD, bytes> value(const std::wstring& path, const wchar_t* name)
{
    DWORD type = 0;
    DWORD size = 1024;
    bytes data(size);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, (std::wstring(rootPath) + L'\\' + path).c_str(), name,
                     RRF_RT_ANY | RRF_NOEXPAND, &type, data.data(), &size) != ERROR_SUCCESS)
        return {};
    data.resize(size);
    return {type, data};
}

void removeTree()
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano");
}

void setInstallationFolder(const void* data, size_t size, DWORD type)
{
    CRegistryKey key;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano", 0, nullptr, 0, KEY_WRITE,
                              nullptr, key.put(), nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExW(key.get(), L"VeltranoPath", 0, type, static_cast<const BYTE*>(data),
                             static_cast<DWORD>(size)),
              ERROR_SUCCESS);
}

const std::wstring folder = L"C:\\veltrano-test";
const std::wstring cleanupPath = folder + L"\\Cleanup.txt";

void writeCleanup(const bytes& contents)
{
    const CFileHandle file(
        CreateFileW(cleanupPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr);
}

std::wstring readCleanup()
{
    const CFileHandle file(
        CreateFileW(cleanupPath.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    std::wstring text(8192, L'\0');
    DWORD read = 0;
    ReadFile(file.get(), text.data(), static_cast<DWORD>(text.size() * 2), &read, nullptr);
    text.resize(read / 2);
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

class Registration : public testing::Test
{
protected:
    void SetUp() override
    {
        removeTree();
        CreateDirectoryW(folder.c_str(), nullptr);
        setInstallationFolder(folder.c_str(), (folder.size() + 1) * sizeof(wchar_t), REG_SZ);
        DeleteFileW(cleanupPath.c_str());
    }
};

// The key, below the root, whose making fails.
std::wstring failingKey;
importPatch_t* createKeyPatch = nullptr;
LSTATUS WINAPI failingCreateKey(HKEY root, LPCWSTR path, DWORD reserved, LPWSTR keyClass,
                                DWORD options, REGSAM access, LPSECURITY_ATTRIBUTES security,
                                PHKEY key, LPDWORD made)
{
    if (failingKey == path)
        return ERROR_ACCESS_DENIED;
    return importOriginal<decltype(&RegCreateKeyExW)>(*createKeyPatch)(
        root, path, reserved, keyClass, options, access, security, key, made);
}

} // namespace

TEST_F(Registration, PutsTheClassUnderItsThreeRolesAgainAndAgain)
{
    const std::wstring path = moduleFileName(nullptr);
    constexpr wchar_t versions[] = L"6.0\0007.0\0008.0\0";
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(DllRegisterServer(), S_OK);
        for (const auto& role : {appControl, backupRestore, trayIcon}) {
            EXPECT_EQ(value(role, nullptr),
                      std::pair(static_cast<DWORD>(REG_EXPAND_SZ),
                                bytesOf(path.c_str(), (path.size() + 1) * 2)));
            EXPECT_EQ(value(role, L"TargetShellVersions"),
                      std::pair(static_cast<DWORD>(REG_MULTI_SZ), bytesOf(versions, 26)));
        }
    }
}

TEST_F(Registration, StopsAtAFailedRoleButNotAtTheTray)
{
    importPatch_t patch(GetModuleHandleW(nullptr), "RegCreateKeyExW",
                        reinterpret_cast<void*>(failingCreateKey));
    ASSERT_TRUE(patch.found());
    createKeyPatch = &patch;
    const struct {
        std::wstring failing;
        HRESULT status;
        bool app, backup, tray;
    } cases[] = {
        {rootPath, E_ACCESSDENIED, false, false, false},
        {appControl, E_ACCESSDENIED, false, false, false},
        {backupRestore, E_ACCESSDENIED, true, false, false},
        {trayIcon, S_OK, true, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        removeTree();
        failingKey = c.failing;
        EXPECT_EQ(DllRegisterServer(), c.status);
        EXPECT_EQ(keyExists(appControl), c.app);
        EXPECT_EQ(keyExists(backupRestore), c.backup);
        EXPECT_EQ(keyExists(trayIcon), c.tray);
    }
    failingKey.clear();
}

TEST_F(Registration, TakesTheClassOutWithEmptyParentsAndLeavesOthers)
{
    ASSERT_EQ(DllRegisterServer(), S_OK);
    CRegistryKey other;
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_LOCAL_MACHINE,
                        (std::wstring(rootPath) + L"\\UIElements\\AppControl\\{other}").c_str(), 0,
                        nullptr, 0, KEY_WRITE, nullptr, other.put(), nullptr),
        ERROR_SUCCESS);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_FALSE(keyExists(appControl));
    EXPECT_TRUE(keyExists(L"UIElements\\AppControl\\{other}"));
    EXPECT_FALSE(keyExists(L"UIElements\\BackupRestore"));
    EXPECT_FALSE(keyExists(L"TrayIcon"));
    EXPECT_TRUE(keyExists(L""));
    // A key with values but no subkeys goes too.
    RegSetValueExW(other.get(), L"v", 0, REG_SZ, nullptr, 0);
    VLKT_SDK::CUnregisterComponents registrar;
    EXPECT_EQ(registrar.RemoveKeyChain(L"UIElements\\AppControl", L"{other}"), S_OK);
    EXPECT_FALSE(keyExists(L"UIElements"));
    EXPECT_TRUE(keyExists(L""));
    EXPECT_EQ(registrar.RemoveKeyChain(L"UIElements", L"gone"), static_cast<HRESULT>(0x80070002));
    // Nothing there at all, and the list is written all the same.
    DeleteFileW(cleanupPath.c_str());
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(readCleanup(), L"\xFEFF" + elevenLines);
}

TEST_F(Registration, CleanupLinesAreAppendedAndAFileWithoutTheMarkIsLost)
{
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(readCleanup(), L"\xFEFF" + elevenLines + elevenLines);

    const struct {
        bytes before;
        std::wstring after;
    } cases[] = {
        {{}, L"\xFEFFK\tp\t4294967295\r\n"},
        {{0xFF}, L"\xFEFFK\tp\t4294967295\r\n"},
        {{'a', 'b', 'c', 'd'}, L"\xFEFFK\tp\t4294967295\r\n"},
        {{0xFE, 0xFF, 0, 'a'}, L"\xFEFFK\tp\t4294967295\r\n"}, // the other byte order
        {{0xFF, 0xFE, 'a', 0},
         L"\xFEFF"
         L"aK\tp\t4294967295\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        writeCleanup(c.before);
        EXPECT_EQ(AddCleanupLine(L"K", L"p", 0xFFFFFFFF, nullptr), S_OK);
        EXPECT_EQ(readCleanup(), c.after);
    }
    writeCleanup({});
    EXPECT_EQ(AddCleanupLine(L"K", L"p", 1, L""), S_OK); // an empty name is a blank
    EXPECT_EQ(readCleanup(), L"\xFEFFK\tp\t1\t \r\n");
}

TEST_F(Registration, AFailedCleanupLineIsTracedAndReturned)
{
    const wchar_t odd[] = L"C:\\x";
    const struct {
        const wchar_t* kind;
        const wchar_t* path;
        size_t size; // of the folder's value; 0 keeps the good one
        DWORD type;
        HRESULT status;
        std::wstring line;
    } cases[] = {
        {nullptr, L"p", 0, 0, E_INVALIDARG, L"E -2147024809 "},
        {L"K", L"", 0, 0, E_INVALIDARG, L"E -2147024809 "},
        {L"K", L"p", 9, REG_SZ, static_cast<HRESULT>(0x8007000D), L"E -2147024883 "},
        {L"K", L"p", 10, REG_BINARY, static_cast<HRESULT>(0x8007000D), L"E -2147024883 "},
        {L"K", L"p", 10, REG_EXPAND_SZ, static_cast<HRESULT>(0x80070003), L"E -2147024893 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        if (c.size)
            setInstallationFolder(odd, c.size, c.type);
        traceRecorder_t trace;
        EXPECT_EQ(AddCleanupLine(c.kind, c.path, 1, nullptr), c.status);
        EXPECT_EQ(trace.messages(), std::vector<std::wstring>{c.line});
    }
    removeTree();
    EXPECT_EQ(AddCleanupLine(L"K", L"p", 1, nullptr), static_cast<HRESULT>(0x80070002));
    EXPECT_EQ(DllUnregisterServer(), S_OK); // without an installation folder too
}
