#include "security/objectsecurity.h"

#include "common/osversion.h"
#include "common/scoped.h"
#include "common/status.h"
#include "tracecore/tracer.h"

#include <aclapi.h>
#include <sddl.h>

using namespace tracecore;
using ATL::CDacl;
using ATL::CSecurityDesc;
using ATL::CSid;

namespace {

constexpr BYTE ntAuthority = 5;
constexpr DWORD mappingReadWrite = FILE_MAP_READ | FILE_MAP_WRITE;
constexpr DWORD semaphoreUse = SYNCHRONIZE | READ_CONTROL | SEMAPHORE_MODIFY_STATE;
constexpr DWORD folderReadExecute = 0x1200A9;

enum class account { authenticatedUsers, users, administrators, localSystem };

struct aceRow_t {
    account who;
    DWORD mask;
};

// The first two rows are in a different order in the two lists. Intended.
constexpr aceRow_t mappingRows[] = {
    {account::authenticatedUsers, mappingReadWrite},
    {account::users, mappingReadWrite},
    {account::administrators, SECTION_ALL_ACCESS},
    {account::localSystem, SECTION_ALL_ACCESS},
};
constexpr aceRow_t semaphoreRows[] = {
    {account::users, semaphoreUse},
    {account::authenticatedUsers, semaphoreUse},
    {account::administrators, SEMAPHORE_ALL_ACCESS},
    {account::localSystem, SEMAPHORE_ALL_ACCESS},
};
static_assert(mappingReadWrite == 0x6 && SECTION_ALL_ACCESS == 0xF001F);
static_assert(semaphoreUse == 0x120002 && SEMAPHORE_ALL_ACCESS == 0x1F0003);

CSid accountSid(account who)
{
    switch (who) {
    case account::authenticatedUsers:
        return CSid(ntAuthority, {SECURITY_AUTHENTICATED_USER_RID});
    case account::users:
        return CSid(ntAuthority, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS});
    case account::administrators:
        return CSid(ntAuthority, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS});
    case account::localSystem:
        break;
    }
    return CSid(ntAuthority, {SECURITY_LOCAL_SYSTEM_RID});
}

// Callers read the last error, which stack unwinding may have changed.
void restoreLastError(const ATL::CAtlException& exception)
{
    SetLastError(HRESULT_FACILITY(exception.m_hr) == FACILITY_WIN32
                     ? static_cast<DWORD>(HRESULT_CODE(exception.m_hr))
                     : static_cast<DWORD>(exception.m_hr));
}

template <size_t rowCount>
CSecurityDesc buildDescriptor(const aceRow_t (&rows)[rowCount], DWORD packagesMask)
{
    CSecurityDesc descriptor = ATL::ProcessDescriptor();
    CDacl list;
    for (const aceRow_t& row : rows)
        list.AddAllowedAce(accountSid(row.who), row.mask, 0);
    addAppContainerAce(list, packagesMask, 0);
    descriptor.SetDacl(list);
    return descriptor;
}

template <size_t rowCount>
sharedObjectSecurity_t& initSecurity(sharedObjectSecurity_t& security,
                                     const aceRow_t (&rows)[rowCount], DWORD packagesMask)
{
    security.valid = false;
    try {
        security.descriptor = buildDescriptor(rows, packagesMask);
        security.attributes.nLength = sizeof security.attributes;
        security.attributes.lpSecurityDescriptor =
            const_cast<SECURITY_DESCRIPTOR*>(security.descriptor.GetPSECURITY_DESCRIPTOR());
        security.attributes.bInheritHandle = FALSE;
        security.valid = true;
    } catch (const ATL::CAtlException& exception) {
        traceStatus("SA", exception.m_hr);
        restoreLastError(exception);
    } catch (...) {
        traceStatus("SA", 0);
    }
    return security;
}

// The thread's impersonation token decides before the process's own. Null when neither can be read.
CKernelHandle callersToken()
{
    CKernelHandle token;
    if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.put()) &&
        GetLastError() == ERROR_NO_TOKEN)
        OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put());
    return token;
}

bool callerIsAppContainer()
{
    const CKernelHandle token = callersToken();
    DWORD isContainer = 0;
    DWORD size = 0;
    return token &&
           GetTokenInformation(token.get(), TokenIsAppContainer, &isContainer, sizeof isContainer,
                               &size) &&
           isContainer != 0;
}

} // namespace

sharedObjectSecurity_t& initMappingSecurity(sharedObjectSecurity_t& security)
{
    return initSecurity(security, mappingRows, mappingReadWrite);
}

sharedObjectSecurity_t& initSemaphoreSecurity(sharedObjectSecurity_t& security)
{
    return initSecurity(security, semaphoreRows, semaphoreUse);
}

void applyLowLabel(HANDLE object)
{
    if (readOsVersion().major < 6)
        return;
    CLocalMemory descriptor;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(L"S:(ML;;NW;;;LW)", SDDL_REVISION_1,
                                                              descriptor.put(), nullptr)) {
        traceStatus("SACL 1", statusFromError(GetLastError()));
        return;
    }
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* label = nullptr;
    if (!GetSecurityDescriptorSacl(descriptor.get(), &present, &label, &defaulted) || !present) {
        traceStatus("SACL 2", statusFromError(GetLastError()));
        return;
    }
    const DWORD result = SetSecurityInfo(object, SE_KERNEL_OBJECT, LABEL_SECURITY_INFORMATION,
                                         nullptr, nullptr, nullptr, label);
    if (result != ERROR_SUCCESS)
        traceNoteW(formatWide(L"set SACL failed 0x%x", result));
}

bool addAppContainerAce(CDacl& list, uint32_t mask, BYTE flags)
{
    if (!readOsVersion().atLeast(6, 2))
        return false;
    if (callerIsAppContainer())
        return false;
    CLocalMemory memory;
    if (!ConvertStringSidToSidW(L"S-1-15-2-1", memory.put()) || !IsValidSid(memory.get()))
        return false;
    const CSid packages(memory.get());
    for (UINT index = 0; index < list.GetAceCount(); ++index) {
        const CSid holder = list.GetAceSid(index);
        if (holder.IsValid() && EqualSid(holder.GetPSID(), packages.GetPSID()))
            return false;
    }
    return list.AddAllowedAce(packages, mask, flags);
}

DWORD allowapppackages(const std::wstring& path)
try {
    if (!readOsVersion().atLeast(6, 2))
        return 0;
    const auto name = const_cast<wchar_t*>(path.c_str());
    CLocalMemory memory;
    DWORD result = GetNamedSecurityInfoW(name, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                         nullptr, nullptr, nullptr, memory.put());
    if (result != ERROR_SUCCESS) {
        SetLastError(result);
        return 0;
    }
    const CSecurityDesc descriptor(*static_cast<const SECURITY_DESCRIPTOR*>(memory.get()));
    CDacl list = descriptor.GetDacl();
    if (!addAppContainerAce(list, folderReadExecute, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE))
        return 0;
    result = SetNamedSecurityInfoW(name, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                   nullptr, const_cast<ACL*>(list.GetPACL()), nullptr);
    SetLastError(result);
    return result == ERROR_SUCCESS ? 1 : 0;
} catch (const ATL::CAtlException& exception) { // a list that can't be read, or can't take one more
    restoreLastError(exception);
    return 0;
}

std::wstring securityToString(const SECURITY_DESCRIPTOR* descriptor)
{
    constexpr SECURITY_INFORMATION allParts =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION |
        SACL_SECURITY_INFORMATION | LABEL_SECURITY_INFORMATION;
    wchar_t* text = nullptr;
    if (!ConvertSecurityDescriptorToStringSecurityDescriptorW(
            const_cast<SECURITY_DESCRIPTOR*>(descriptor), SDDL_REVISION_1, allParts, &text,
            nullptr))
        return {};
    const CLocalMemory owner(text);
    return text;
}
