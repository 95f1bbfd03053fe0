#include "security/objectsecurity.h"
#include "support/patchimport.h"

#include <aclapi.h>
#include <sddl.h>

#include <gtest/gtest.h>

namespace {

// What the patched calls answer, and what they saw: type, parts and the lists.
OSVERSIONINFOW version{};
DWORD writeError = 0, noThreadToken = 0;
bool threadIsInside = false;
PSECURITY_DESCRIPTOR folderDescriptor = nullptr;
std::wstring written;

DWORD WINAPI setSecurity(void*, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID,
                         PACL list, PACL system)
{
    const WORD present = system ? SE_SACL_PRESENT : SE_DACL_PRESENT;
    const SECURITY_DESCRIPTOR descriptor{1, 0, present, nullptr, nullptr, system, list};
    written = std::to_wstring(type) + L' ' + std::to_wstring(parts) + L' ' +
              (list || system ? securityToString(&descriptor) : L"null");
    return writeError;
}

// DCLC is 0x6 and CCDCLCSWRPSDRCWDWO is 0xF001F. Wine names every prefix's user and group alike,
// and writes a label without its type and flags.
TEST(ObjectSecurity, ListsInOrderWithPackagesFrom62AndLabelsFrom60)
{
    const std::wstring owners = L"O:S-1-5-21-0-0-0-1000G:S-1-5-21-0-0-0-513D:";
    const std::wstring mapping = owners + L"(A;;DCLC;;;AU)(A;;DCLC;;;BU)(A;;CCDCLCSWRPSDRCWDWO;;;BA"
                                          L")(A;;CCDCLCSWRPSDRCWDWO;;;SY)";
    const std::wstring semaphore = owners + L"(A;;0x120002;;;BU)(A;;0x120002;;;AU)(A;;0x1f0003;;;BA"
                                            L")(A;;0x1f0003;;;SY)";
    const auto answer = [](OSVERSIONINFOW* info) -> BOOL { return *info = version, TRUE; };
    const importPatch_t get("GetVersionExW", +answer), set("SetSecurityInfo", setSecurity);
    const auto textOf = [](auto initSecurity) {
        sharedObjectSecurity_t security;
        const auto& [length, descriptor, inherit] = initSecurity(security).attributes;
        EXPECT_TRUE(security.valid && length == 24);
        return securityToString(static_cast<SECURITY_DESCRIPTOR*>(descriptor));
    };
    for (const DWORD v : {52u, 60u, 61u, 62u, 100u}) {
        version = {0, v / 10, v % 10, 0, VER_PLATFORM_WIN32_NT, L""};
        written.clear();
        EXPECT_EQ(mapping + (v < 62 ? L"" : L"(A;;DCLC;;;AC)"), textOf(initMappingSecurity));
        EXPECT_EQ(semaphore + (v < 62 ? L"" : L"(A;;0x120002;;;AC)"),
                  textOf(initSemaphoreSecurity));
        applyLowLabel(nullptr);
        EXPECT_EQ(v < 60 ? L"" : L"6 16 S:(;;CC;;;LW)", written);
    }
}

TEST(ObjectSecurity, CallerInAContainerLetsNoContainersIn)
{
    const auto openToken = [](HANDLE thread, DWORD, BOOL asSelf, HANDLE* token) -> BOOL {
        SetLastError(noThreadToken);
        return asSelf && !noThreadToken && (*token = thread);
    };
    const auto read = [](HANDLE token, int kind, DWORD* inside) -> BOOL {
        *inside = (token == GetCurrentThread()) == threadIsInside;
        return kind == TokenIsAppContainer;
    };
    const importPatch_t open("OpenThreadToken", +openToken), get("GetTokenInformation", +read);
    // The thread's own token decides, without one the process's; with neither to be had, nothing.
    const std::tuple<DWORD, bool, bool> cases[] = {
        {0, true, false}, {0, false, true}, {ERROR_NO_TOKEN, false, false}, {5, false, true}};
    for (const auto& [error, inThread, added] : cases) {
        noThreadToken = error;
        threadIsInside = inThread;
        ATL::CDacl list;
        EXPECT_EQ(added, addAppContainerAce(list, 1, 0)) << error;
    }
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
        {L"O:BA", ERROR_INVALID_ACL, L"1 4 D:" + packages},
        {nullptr, ERROR_PATH_NOT_FOUND, L""}};
    const auto read = [](void*, int, int, void*, void*, void*, void*, void** out) -> DWORD {
        return (*out = folderDescriptor) ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
    };
    const importPatch_t get("GetNamedSecurityInfoW", +read);
    const importPatch_t set("SetNamedSecurityInfoW", setSecurity);
    for (const auto& [list, error, expected] : cases) {
        written.clear();
        writeError = error;
        folderDescriptor = nullptr; // the caller frees it
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
