#include "agent/objectsecurity.h"

#include <aclapi.h>
#include <sddl.h>
#include <gtest/gtest.h>

#include "linkfixture.h"
#include "agent/sharedblock.h"
#include "support/tracerecorder.h"

namespace {

// What the patched calls answer, and what they saw: type, parts and the lists.
OSVERSIONINFOW version{};
DWORD writeError = 0;
PSECURITY_DESCRIPTOR folderDescriptor = nullptr;
std::wstring written;

BOOL WINAPI getVersion(OSVERSIONINFOW* info)
{
    *info = version;
    return TRUE;
}

DWORD WINAPI setSecurity(void*, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID,
                         PACL list, PACL system)
{
    const WORD present = system ? SE_SACL_PRESENT : SE_DACL_PRESENT;
    const SECURITY_DESCRIPTOR descriptor{1, 0, present, nullptr, nullptr, system, list};
    written = std::to_wstring(type) + L' ' + std::to_wstring(parts) + L' ' +
              (list || system ? securityToString(&descriptor) : L"null");
    return writeError;
}

DWORD WINAPI getSecurity(LPCWSTR, int, int, PSID*, PSID*, PACL*, PACL*, PSECURITY_DESCRIPTOR* out)
{
    *out = folderDescriptor; // the caller frees it
    return *out ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

// DCLC is 0x6 and CCDCLCSWRPSDRCWDWO is 0xF001F. Wine names every prefix's user and group alike,
// and writes a label without its type and flags.
TEST(ObjectSecurity, ListsInOrderWithPackagesFrom62AndLabelsFrom60)
{
    const std::wstring owners = L"O:S-1-5-21-0-0-0-1000G:S-1-5-21-0-0-0-513";
    const std::wstring mapping = owners +
                                 L"D:(A;;DCLC;;;AU)(A;;DCLC;;;BU)"
                                 L"(A;;CCDCLCSWRPSDRCWDWO;;;BA)(A;;CCDCLCSWRPSDRCWDWO;;;SY)";
    const std::wstring semaphore = owners + L"D:(A;;0x120002;;;BU)(A;;0x120002;;;AU)"
                                            L"(A;;0x1f0003;;;BA)(A;;0x1f0003;;;SY)";
    const importPatch_t get("GetVersionExW", getVersion), set("SetSecurityInfo", setSecurity);
    const auto textOf = [](const sharedObjectSecurity_t& security) {
        EXPECT_TRUE(security.valid && security.attributes.nLength == 24);
        return securityToString(
            static_cast<SECURITY_DESCRIPTOR*>(security.attributes.lpSecurityDescriptor));
    };
    for (const DWORD v : {52u, 60u, 61u, 62u, 100u}) {
        version.dwMajorVersion = v / 10;
        version.dwMinorVersion = v % 10;
        written.clear();
        sharedObjectSecurity_t security;
        EXPECT_EQ(mapping + (v < 62 ? L"" : L"(A;;DCLC;;;AC)"),
                  textOf(initMappingSecurity(security)));
        EXPECT_EQ(semaphore + (v < 62 ? L"" : L"(A;;0x120002;;;AC)"),
                  textOf(initSemaphoreSecurity(security)));
        applyLowLabel(nullptr);
        EXPECT_EQ(v < 60 ? L"" : L"6 16 S:(;;CC;;;LW)", written);
    }
}

TEST(ObjectSecurity, FailuresAreTracedWithTheirStatus)
{
    traceRecorder_t trace;
    failingError = 5;
    applyLowLabel(nullptr);
    {
        const importPatch_t map("MapViewOfFile", failing);
        auto unmapped = createSharedBlock(L"vl-test", 16);
        EXPECT_TRUE(unmapped.handle && !unmapped.view);
        closeSharedBlock(unmapped);
    }
    const importPatch_t token("OpenProcessToken", failing);
    EXPECT_EQ(nullptr, createSharedBlock(L"vl-test", 16).handle);
    EXPECT_EQ(nullptr, openLinkSemaphore(L"vl-test"));
    const std::wstring code = win32(5);
    EXPECT_EQ(L"|E 0 set SACL failed 0x6" + code + L"IPC.MapViewOfFile" + code + L"SA" + code +
                  L"IPC.InitSA 'vl-test'" + win32(2) +
                  L"IPC.Failed to open semaphore 'vl-test'. BAD." + code + L"SA",
              trace.joined());
}

TEST(ObjectSecurity, FolderListKeepsItsEntriesAndGetsOneForPackages)
{
    const std::wstring packages = L"(A;OICI;0x1200a9;;;AC)", nullList = L"1 4 null";
    const std::tuple<const wchar_t*, DWORD, std::wstring> cases[] = {
        // the list, none for a path that can't be read; the last call's error; what is written
        {L"D:(D;;DC;;;BG)(A;OICIID;FA;;;BA)", 0,
         L"1 4 D:(D;;DC;;;BG)(A;OICIID;FA;;;BA)" + packages},
        {L"D:(D;;0x1;;;S-1-15-2-1)", 0, L""},
        // A null list lets everybody in; one entry in its place would shut all others out.
        {L"D:", 0, nullList},
        {L"O:BA", 0, L"1 4 D:" + packages},
        {L"D:", ERROR_INVALID_ACL, L"1 4 D:" + packages},
        {nullptr, ERROR_PATH_NOT_FOUND, L""}};
    const importPatch_t get("GetNamedSecurityInfoW", getSecurity);
    const importPatch_t set("SetNamedSecurityInfoW", setSecurity);
    for (const auto& [list, error, expected] : cases) {
        written.clear();
        writeError = error;
        folderDescriptor = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(list, 1, &folderDescriptor, nullptr);
        if (expected == nullList)
            static_cast<SECURITY_DESCRIPTOR_RELATIVE*>(folderDescriptor)->Dacl = 0;
        SetLastError(0);
        EXPECT_EQ(!error && !expected.empty(), allowapppackages(L"C:\\folder")) << expected;
        EXPECT_EQ(error, GetLastError());
        EXPECT_EQ(expected, written);
    }
}

} // namespace
