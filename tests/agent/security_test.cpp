#include "agent/objectsecurity.h"

#include <aclapi.h>
#include <sddl.h>
#include <gtest/gtest.h>

#include "linkfixture.h"
#include "agent/sharedblock.h"
#include "support/tracerecorder.h"

namespace {

OSVERSIONINFOW version{};

BOOL WINAPI getVersion(OSVERSIONINFOW* info)
{
    *info = version;
    return TRUE;
}

// Each entry as "type flags mask sid;", numbers in hexadecimal. All types used here begin alike.
std::wstring entries(const ACL* list)
{
    std::wstring text;
    for (DWORD i = 0; list && i < list->AceCount; ++i) {
        void* raw = nullptr;
        wchar_t* sid = nullptr;
        wchar_t line[200] = {};
        EXPECT_TRUE(GetAce(const_cast<ACL*>(list), i, &raw));
        const auto ace = static_cast<ACCESS_ALLOWED_ACE*>(raw);
        EXPECT_TRUE(ConvertSidToStringSidW(&ace->SidStart, &sid));
        const CLocalMemory owner(sid);
        _snwprintf(line, 199, L"%x %x %lx %ls;", ace->Header.AceType, ace->Header.AceFlags,
                   ace->Mask, sid);
        text += line;
    }
    return list ? text : L"null";
}

// What the patched calls answer, and what they saw: the type, the parts, and the entries of the
// list.
DWORD writeError = 0;
PSECURITY_DESCRIPTOR folderDescriptor = nullptr;
std::wstring written;

DWORD WINAPI setSecurity(void*, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID,
                         PACL list, PACL system)
{
    written = std::to_wstring(type) + L' ' + std::to_wstring(parts) + L' ' +
              entries(parts == DACL_SECURITY_INFORMATION ? list : system);
    return writeError;
}

DWORD WINAPI getSecurity(LPCWSTR, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL*, PACL*,
                         PSECURITY_DESCRIPTOR* out)
{
    *out = folderDescriptor; // the caller frees it
    return *out ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

class ObjectSecurity : public testing::Test
{
protected:
    void setVersion(DWORD major, DWORD minor)
    {
        version.dwMajorVersion = major;
        version.dwMinorVersion = minor;
        written.clear();
    }
    void SetUp() override { setVersion(6, 2); }

    importPatch_t m_version = patched("GetVersionExW", getVersion);
    importPatch_t m_set = patched("SetSecurityInfo", setSecurity);
    importPatch_t m_get = patched("GetNamedSecurityInfoW", getSecurity);
    importPatch_t m_setNamed = patched("SetNamedSecurityInfoW", setSecurity);
    traceRecorder_t m_trace;
};

TEST_F(ObjectSecurity, ListsInOrderWithPackagesFrom62AndLabelsFrom60)
{
    const std::wstring mapping = L"0 0 6 S-1-5-11;0 0 6 S-1-5-32-545;0 0 f001f S-1-5-32-544;"
                                 L"0 0 f001f S-1-5-18;";
    const std::wstring semaphore = L"0 0 120002 S-1-5-32-545;0 0 120002 S-1-5-11;"
                                   L"0 0 1f0003 S-1-5-32-544;0 0 1f0003 S-1-5-18;";
    const std::wstring label = L"6 16 11 0 1 S-1-16-4096;";
    const auto listOf = [](const sharedObjectSecurity_t& security) {
        BOOL flag = FALSE;
        ACL* list = nullptr;
        EXPECT_TRUE(security.valid && security.attributes.nLength == 24);
        GetSecurityDescriptorDacl(security.attributes.lpSecurityDescriptor, &flag, &list, &flag);
        return entries(list);
    };
    for (const auto& [major, minor] :
         {std::pair{5u, 2u}, {6u, 0u}, {6u, 1u}, {6u, 2u}, {10u, 0u}}) {
        SCOPED_TRACE(testing::Message() << major << '.' << minor);
        setVersion(major, minor);
        const bool with = std::pair(major, minor) >= std::pair(6u, 2u);
        sharedObjectSecurity_t security;
        EXPECT_EQ(mapping + (with ? L"0 0 6 S-1-15-2-1;" : L""),
                  listOf(initMappingSecurity(security)));
        EXPECT_EQ(semaphore + (with ? L"0 0 120002 S-1-15-2-1;" : L""),
                  listOf(initSemaphoreSecurity(security)));
        applyLowLabel(nullptr);
        EXPECT_EQ(major < 6 ? L"" : label, written);
    }
}

TEST_F(ObjectSecurity, FailuresAreTracedWithTheirStatus)
{
    writeError = failingError = 5;
    applyLowLabel(nullptr);
    writeError = 0;
    for (const char* call :
         {"GetSecurityDescriptorSacl", "ConvertStringSecurityDescriptorToSecurityDescriptorW"}) {
        const auto patch = patched(call, failing);
        applyLowLabel(nullptr);
    }
    const auto token = patched("OpenProcessToken", failing);
    EXPECT_EQ(nullptr, createSharedBlock(L"vl-test", 16).handle);
    EXPECT_EQ(nullptr, openLinkSemaphore(L"vl-test"));
    EXPECT_EQ(
        (texts_t{L"E 0 set SACL failed 0x5", win32(5) + L"SACL 2", win32(5) + L"SACL 1",
                 win32(5) + L"SA", win32(5) + L"IPC.InitSA 'vl-test'",
                 win32(2) + L"IPC.Failed to open semaphore 'vl-test'. BAD.", win32(5) + L"SA"}),
        m_trace.messages());
}

TEST_F(ObjectSecurity, FolderListKeepsItsEntriesAndGetsOneForPackages)
{
    const std::wstring packages = L"0 3 1200a9 S-1-15-2-1;";
    const struct {
        const wchar_t* list; // null: the path can't be read
        DWORD error, result; // the error of the last call
        std::wstring written;
    } cases[] = {
        {L"D:(D;;0x2;;;BG)(A;OICIID;0x1f01ff;;;BA)", 0, 1,
         L"1 4 1 0 2 S-1-5-32-546;0 13 1f01ff S-1-5-32-544;" + packages},
        {L"D:(A;OICI;0x1200a9;;;S-1-15-2-1)", 0, 0, L""},
        {L"D:(D;;0x1;;;S-1-15-2-1)", 0, 0, L""},
        {L"O:BA", 0, 1, L"1 4 " + packages},
        {L"D:(A;;0x2;;;BG)", ERROR_INVALID_ACL, 0, L"1 4 0 0 2 S-1-5-32-546;" + packages},
        {nullptr, ERROR_PATH_NOT_FOUND, 0, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.list ? c.list : L"unreadable"));
        setVersion(6, 2);
        writeError = c.error;
        folderDescriptor = nullptr;
        if (c.list)
            ConvertStringSecurityDescriptorToSecurityDescriptorW(c.list, 1, &folderDescriptor,
                                                                 nullptr);
        EXPECT_EQ(c.result, allowapppackages(L"C:\\folder"));
        const DWORD error = GetLastError();
        EXPECT_EQ(c.written, written);
        EXPECT_TRUE(error == c.error || c.error == 0);
    }
    // A null list lets everybody in; a list of one entry in its place would shut all others out.
    writeError = 0;
    folderDescriptor = LocalAlloc(LPTR, sizeof(SECURITY_DESCRIPTOR));
    InitializeSecurityDescriptor(folderDescriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(folderDescriptor, TRUE, nullptr, FALSE);
    EXPECT_EQ(1u, allowapppackages(L"C:\\folder"));
    EXPECT_EQ(L"1 4 null", written);
    setVersion(6, 1);
    EXPECT_EQ(0u, allowapppackages(L"C:\\folder"));
    EXPECT_EQ(L"", written);
}

BOOL WINAPI inContainer(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID value, DWORD, PDWORD)
{
    *static_cast<DWORD*>(value) = 1;
    return TRUE;
}

TEST_F(ObjectSecurity, ContainerWidensNothingUnlessNoTokenTellsOfIt)
{
    const auto information = patched("GetTokenInformation", inContainer);
    ATL::CDacl list;
    EXPECT_FALSE(addAppContainerAce(list, 6, 0));
    const auto thread = patched("OpenThreadToken", failing);
    const auto process = patched("OpenProcessToken", failing);
    failingCalls = 0;
    failingError = 5; // only a missing thread token leads to the process's
    EXPECT_TRUE(addAppContainerAce(list, 6, 0));
    EXPECT_EQ(1, failingCalls);
}

} // namespace
