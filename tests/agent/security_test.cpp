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

DWORD WINAPI getSecurity(LPCWSTR, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL*, PACL*,
                         PSECURITY_DESCRIPTOR* out)
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
    const auto getVersionPatch = patched("GetVersionExW", getVersion);
    const auto set = patched("SetSecurityInfo", setSecurity);
    const auto textOf = [](const sharedObjectSecurity_t& security) {
        EXPECT_TRUE(security.valid && security.attributes.nLength == 24);
        return securityToString(
            static_cast<SECURITY_DESCRIPTOR*>(security.attributes.lpSecurityDescriptor));
    };
    using version_t = std::pair<DWORD, DWORD>;
    for (const auto& v : {version_t{5, 2}, {6, 0}, {6, 1}, {6, 2}, {10, 0}}) {
        SCOPED_TRACE(testing::PrintToString(v));
        version.dwMajorVersion = v.first;
        version.dwMinorVersion = v.second;
        written.clear();
        const bool with = v >= version_t{6, 2};
        sharedObjectSecurity_t security;
        EXPECT_EQ(mapping + (with ? L"(A;;DCLC;;;AC)" : L""),
                  textOf(initMappingSecurity(security)));
        EXPECT_EQ(semaphore + (with ? L"(A;;0x120002;;;AC)" : L""),
                  textOf(initSemaphoreSecurity(security)));
        applyLowLabel(nullptr);
        EXPECT_EQ(v.first < 6 ? L"" : L"6 16 S:(;;CC;;;LW)", written);
    }
}

TEST(ObjectSecurity, FailuresAreTracedWithTheirStatus)
{
    traceRecorder_t trace;
    const CKernelHandle other(CreateEventW(nullptr, FALSE, FALSE, L"vl-event"));
    EXPECT_EQ(nullptr, createSharedBlock(L"vl-event", 16).handle);
    EXPECT_EQ(0u, trace.messages().back().find(L"U '`I04`'SA: O:"));
    failingError = 5;
    applyLowLabel(nullptr);
    for (const char* call :
         {"GetSecurityDescriptorSacl", "ConvertStringSecurityDescriptorToSecurityDescriptorW"}) {
        const auto patch = patched(call, failing);
        applyLowLabel(nullptr);
    }
    mappedBlock_t unmapped;
    {
        const auto map = patched("MapViewOfFile", failing);
        unmapped = createSharedBlock(L"vl-test", 16);
        EXPECT_TRUE(unmapped.handle && !unmapped.view);
    }
    closeSharedBlock(unmapped);
    const auto token = patched("OpenProcessToken", failing);
    EXPECT_EQ(nullptr, createSharedBlock(L"vl-test", 16).handle);
    EXPECT_EQ(nullptr, openLinkSemaphore(L"vl-test"));
    const std::wstring code = win32(5);
    EXPECT_EQ((texts_t{L"E 0 set SACL failed 0x6", code + L"SACL 2", code + L"SACL 1",
                       code + L"IPC.MapViewOfFile", code + L"SA", code + L"IPC.InitSA 'vl-test'",
                       win32(2) + L"IPC.Failed to open semaphore 'vl-test'. BAD.", code + L"SA"}),
              trace.messages());
}

TEST(ObjectSecurity, FolderListKeepsItsEntriesAndGetsOneForPackages)
{
    const std::wstring packages = L"(A;OICI;0x1200a9;;;AC)", nullList = L"1 4 null";
    const struct {
        const wchar_t* list; // null: the path can't be read
        DWORD error, result; // the error of the last call
        std::wstring written;
    } cases[] = {
        {L"D:(D;;DC;;;BG)(A;OICIID;FA;;;BA)", 0, 1,
         L"1 4 D:(D;;DC;;;BG)(A;OICIID;FA;;;BA)" + packages},
        {L"D:(D;;0x1;;;S-1-15-2-1)", 0, 0, L""},
        // A null list lets everybody in; one entry in its place would shut all others out.
        {L"D:", 0, 1, nullList},
        {L"O:BA", 0, 1, L"1 4 D:" + packages},
        {L"D:", ERROR_INVALID_ACL, 0, L"1 4 D:" + packages},
        {nullptr, ERROR_PATH_NOT_FOUND, 0, L""},
    };
    const auto get = patched("GetNamedSecurityInfoW", getSecurity);
    const auto set = patched("SetNamedSecurityInfoW", setSecurity);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.list ? c.list : L"unreadable"));
        written.clear();
        writeError = c.error;
        folderDescriptor = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorW(c.list, 1, &folderDescriptor, nullptr);
        if (c.written == nullList)
            static_cast<SECURITY_DESCRIPTOR_RELATIVE*>(folderDescriptor)->Dacl = 0;
        SetLastError(0);
        EXPECT_EQ(c.result, allowapppackages(L"C:\\folder"));
        EXPECT_EQ(c.error, GetLastError());
        EXPECT_EQ(c.written, written);
    }
}

BOOL WINAPI inContainer(HANDLE, TOKEN_INFORMATION_CLASS kind, LPVOID value, DWORD, PDWORD)
{
    *static_cast<DWORD*>(value) = kind == 29;
    return TRUE;
}

TEST(ObjectSecurity, ContainerWidensNothingUnlessNoTokenTellsOfIt)
{
    const auto information = patched("GetTokenInformation", inContainer);
    ATL::CDacl list;
    EXPECT_FALSE(addAppContainerAce(list, 6, 0));
    const auto thread = patched("OpenThreadToken", failing);
    failingError = 5; // only a missing thread token leads to the process's
    EXPECT_TRUE(addAppContainerAce(list, 6, 0));
}

} // namespace
