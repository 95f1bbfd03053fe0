#include "agent/objectsecurity.h"

#include <aclapi.h>
#include <sddl.h>
#include <gtest/gtest.h>

#include "linkfixture.h"
#include "agent/sharedblock.h"
#include "support/tracerecorder.h"

namespace {

const HMODULE self = GetModuleHandleW(nullptr);
using texts_t = std::vector<std::wstring>;

// One line an entry, "type flags mask sid", all numbers in hexadecimal.
texts_t entries(const ACL* list)
{
    texts_t lines;
    for (DWORD i = 0; list && i < list->AceCount; ++i) {
        void* raw = nullptr;
        EXPECT_TRUE(GetAce(const_cast<ACL*>(list), i, &raw));
        const auto ace = static_cast<ACCESS_ALLOWED_ACE*>(raw); // all types here begin like it
        wchar_t* sid = nullptr;
        EXPECT_TRUE(ConvertSidToStringSidW(&ace->SidStart, &sid));
        wchar_t line[200];
        _snwprintf(line, 199, L"%x %x %lx %ls", ace->Header.AceType, ace->Header.AceFlags,
                   ace->Mask, sid);
        LocalFree(sid);
        lines.emplace_back(line);
    }
    return lines;
}

texts_t entries(const sharedObjectSecurity_t& security)
{
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    EXPECT_TRUE(GetSecurityDescriptorDacl(security.attributes.lpSecurityDescriptor, &present, &list,
                                          &defaulted));
    return entries(list);
}

// What the patched calls answer, and what they saw.
struct {
    DWORD error;
    DWORD isAppContainer;
    SECURITY_DESCRIPTOR* descriptor;
    int calls;
    SE_OBJECT_TYPE type;
    SECURITY_INFORMATION parts;
    bool isNullList;
    texts_t written;
} seen;

DWORD recordList(SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, const ACL* list)
{
    ++seen.calls;
    seen.type = type;
    seen.parts = parts;
    seen.isNullList = !list;
    seen.written = entries(list);
    return seen.error;
}

DWORD WINAPI setSecurityInfo(HANDLE, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID,
                             PACL, PACL system)
{
    return recordList(type, parts, system);
}

DWORD WINAPI setNamedSecurityInfo(LPWSTR, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID,
                                  PSID, PACL list, PACL)
{
    return recordList(type, parts, list);
}

DWORD WINAPI getNamedSecurityInfo(LPCWSTR, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*,
                                  PACL*, PACL*, PSECURITY_DESCRIPTOR* out)
{
    *out = std::exchange(seen.descriptor, nullptr); // the caller frees it
    return *out ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

BOOL WINAPI failWithError(...)
{
    ++seen.calls;
    SetLastError(seen.error);
    return FALSE;
}

BOOL WINAPI getTokenInformation(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID value, DWORD, PDWORD)
{
    *static_cast<DWORD*>(value) = seen.isAppContainer;
    return TRUE;
}

template <class Function> importPatch_t patch(const char* name, Function* replacement)
{
    return importPatch_t(self, name, reinterpret_cast<void*>(replacement));
}

class ObjectSecurity : public testing::Test
{
protected:
    void SetUp() override { seen = {}; }
    traceRecorder_t m_trace;
};

TEST_F(ObjectSecurity, ListsInOrderAndPackagesFrom62)
{
    const texts_t mapping = {L"0 0 6 S-1-5-11", L"0 0 6 S-1-5-32-545", L"0 0 f001f S-1-5-32-544",
                             L"0 0 f001f S-1-5-18", L"0 0 6 S-1-15-2-1"};
    const texts_t semaphore = {L"0 0 120002 S-1-5-32-545", L"0 0 120002 S-1-5-11",
                               L"0 0 1f0003 S-1-5-32-544", L"0 0 1f0003 S-1-5-18",
                               L"0 0 120002 S-1-15-2-1"};
    const struct {
        DWORD major, minor;
        bool packages;
    } cases[] = {{5, 2, false}, {6, 1, false}, {6, 2, true}, {10, 0, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.major << '.' << c.minor);
        const fakeVersion_t version(c.major, c.minor);
        const auto expected = [&](texts_t lines) {
            lines.resize(c.packages ? 5 : 4);
            return lines;
        };
        sharedObjectSecurity_t security;
        EXPECT_EQ(expected(mapping), entries(initMappingSecurity(security)));
        EXPECT_TRUE(security.valid && security.attributes.nLength == 24);
        EXPECT_TRUE(
            securityToString(security.descriptor.GetPSECURITY_DESCRIPTOR()).starts_with(L"O:"));
        EXPECT_EQ(expected(semaphore), entries(initSemaphoreSecurity(security)));
    }
}

TEST_F(ObjectSecurity, UnreadableTokenLeavesNothingMade)
{
    seen.error = ERROR_PRIVILEGE_NOT_HELD;
    const auto token = patch("OpenProcessToken", failWithError);
    EXPECT_EQ(nullptr, createSharedBlock(L"vl-test-block", 16).handle);
    EXPECT_EQ((texts_t{win32(1314) + L"SA", win32(1314) + L"IPC.InitSA 'vl-test-block'"}),
              m_trace.messages());
    EXPECT_EQ(nullptr, openLinkSemaphore(L"vl-test-semaphore"));
    EXPECT_EQ((texts_t{win32(2) + L"IPC.Failed to open semaphore 'vl-test-semaphore'. BAD.",
                       win32(1314) + L"SA"}),
              m_trace.messages());
}

TEST_F(ObjectSecurity, LowLabelFrom60)
{
    const auto set = patch("SetSecurityInfo", setSecurityInfo);
    {
        const fakeVersion_t version(5, 2);
        applyLowLabel(nullptr);
        EXPECT_EQ(0, seen.calls);
    }
    const fakeVersion_t version(6, 0);
    applyLowLabel(nullptr);
    EXPECT_EQ(texts_t{L"11 0 1 S-1-16-4096"}, seen.written);
    EXPECT_TRUE(seen.type == 6 && seen.parts == 16);
    EXPECT_EQ(texts_t{}, m_trace.messages());

    seen.error = 5;
    applyLowLabel(nullptr);
    {
        const auto sacl = patch("GetSecurityDescriptorSacl", failWithError);
        applyLowLabel(nullptr);
    }
    const auto convert =
        patch("ConvertStringSecurityDescriptorToSecurityDescriptorW", failWithError);
    applyLowLabel(nullptr);
    EXPECT_EQ((texts_t{L"E 0 set SACL failed 0x5", win32(5) + L"SACL 2", win32(5) + L"SACL 1"}),
              m_trace.messages());
}

TEST_F(ObjectSecurity, FolderListKeepsItsEntriesAndGetsOneForPackages)
{
    const std::wstring packages = L"0 3 1200a9 S-1-15-2-1";
    const struct {
        const wchar_t* list; // none: the path can't be read
        DWORD writeError;
        DWORD result;
        texts_t written;
    } cases[] = {
        {L"D:(D;;0x2;;;BG)(A;OICIID;0x1f01ff;;;BA)",
         0,
         1,
         {L"1 0 2 S-1-5-32-546", L"0 13 1f01ff S-1-5-32-544", packages}},
        {L"D:(A;OICI;0x1200a9;;;S-1-15-2-1)", 0, 0, {}},
        {L"D:(D;;0x1;;;S-1-15-2-1)", 0, 0, {}},
        {L"O:BA", 0, 1, {packages}},
        {L"D:(A;;0x2;;;BG)", ERROR_INVALID_ACL, 0, {L"0 0 2 S-1-5-32-546", packages}},
        {nullptr, 0, 0, {}},
    };
    const auto get = patch("GetNamedSecurityInfoW", getNamedSecurityInfo);
    const auto set = patch("SetNamedSecurityInfoW", setNamedSecurityInfo);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.list ? c.list : L"unreadable"));
        seen = {};
        seen.error = c.writeError;
        PSECURITY_DESCRIPTOR raw = nullptr;
        if (c.list) {
            ASSERT_TRUE(
                ConvertStringSecurityDescriptorToSecurityDescriptorW(c.list, 1, &raw, nullptr));
            seen.descriptor = static_cast<SECURITY_DESCRIPTOR*>(raw);
        }
        EXPECT_EQ(c.result, allowapppackages(L"C:\\folder"));
        const DWORD error = GetLastError();
        EXPECT_EQ(c.written, seen.written);
        if (c.result || c.writeError || !c.list) { // otherwise the error isn't set
            EXPECT_EQ(c.list ? c.writeError : ERROR_PATH_NOT_FOUND, error);
        }
        EXPECT_TRUE(!seen.calls || (seen.type == 1 && seen.parts == 4));
    }
    seen = {};
    const fakeVersion_t version(6, 1);
    EXPECT_EQ(0u, allowapppackages(L"C:\\folder"));
    EXPECT_EQ(0, seen.calls);
}

TEST_F(ObjectSecurity, NullListStaysNull)
{
    seen.descriptor = static_cast<SECURITY_DESCRIPTOR*>(LocalAlloc(LPTR, sizeof *seen.descriptor));
    InitializeSecurityDescriptor(seen.descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(seen.descriptor, TRUE, nullptr, FALSE);
    const auto get = patch("GetNamedSecurityInfoW", getNamedSecurityInfo);
    const auto set = patch("SetNamedSecurityInfoW", setNamedSecurityInfo);
    EXPECT_EQ(1u, allowapppackages(L"C:\\folder"));
    EXPECT_TRUE(seen.calls == 1 && seen.isNullList);
}

TEST_F(ObjectSecurity, ContainerWidensNothing)
{
    const auto token = patch("GetTokenInformation", getTokenInformation);
    for (const DWORD isContainer : {0u, 1u}) {
        seen.isAppContainer = isContainer;
        ATL::CDacl list;
        EXPECT_EQ(!isContainer, addAppContainerAce(list, 6, 0));
        EXPECT_EQ(1 - isContainer, list.GetAceCount());
    }
    // Only a missing thread token leads to the process's; no token at all doesn't stop it.
    seen.error = ERROR_ACCESS_DENIED;
    const auto thread = patch("OpenThreadToken", failWithError);
    const auto process = patch("OpenProcessToken", failWithError);
    ATL::CDacl list;
    EXPECT_TRUE(addAppContainerAce(list, 6, 0));
    EXPECT_EQ(1, seen.calls);
}

} // namespace
