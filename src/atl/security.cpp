#include "atl/security.h"

#include "common/status.h"

#include <cstddef>
#include <cstring>

namespace ATL {

namespace {

[[noreturn]] void throwLastError()
{
    AtlThrow(statusFromError(GetLastError()));
}

void check(BOOL succeeded)
{
    if (!succeeded)
        throwLastError();
}

// Where the identifier stands in an entry, by the entry's type; 0 for a type without one.
size_t sidOffset(const std::vector<BYTE>& entry)
{
    constexpr size_t plain = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    switch (entry[offsetof(ACE_HEADER, AceType)]) {
    case ACCESS_ALLOWED_ACE_TYPE:
    case ACCESS_DENIED_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_ACE_TYPE:
        return plain;
    case ACCESS_ALLOWED_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_OBJECT_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_OBJECT_ACE_TYPE: {
        DWORD flags = 0;
        constexpr size_t at = offsetof(ACCESS_ALLOWED_OBJECT_ACE, Flags);
        if (entry.size() < at + sizeof flags)
            return 0;
        std::memcpy(&flags, entry.data() + at, sizeof flags);
        return at + sizeof flags + (flags & ACE_OBJECT_TYPE_PRESENT ? sizeof(GUID) : 0) +
               (flags & ACE_INHERITED_OBJECT_TYPE_PRESENT ? sizeof(GUID) : 0);
    }
    default:
        return 0;
    }
}

CSid tokenSid(HANDLE token, TOKEN_INFORMATION_CLASS kind)
{
    // TOKEN_USER is the longer one of the two kinds, and both begin with the pointer.
    alignas(TOKEN_USER) BYTE information[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = 0;
    check(GetTokenInformation(token, kind, information, sizeof information, &size));
    PSID sid = nullptr;
    std::memcpy(&sid, information, sizeof sid);
    return CSid(sid);
}

template <class Bytes> auto dataOrNull(Bytes& bytes)
{
    return bytes.empty() ? nullptr : bytes.data();
}

// The control bits that are the descriptor's own; the others follow from its parts.
constexpr SECURITY_DESCRIPTOR_CONTROL settableControl =
    SE_DACL_AUTO_INHERIT_REQ | SE_SACL_AUTO_INHERIT_REQ | SE_DACL_AUTO_INHERITED |
    SE_SACL_AUTO_INHERITED | SE_DACL_PROTECTED | SE_SACL_PROTECTED;

} // namespace

CSid::CSid(BYTE authority, std::initializer_list<DWORD> subAuthorities)
{
    if (subAuthorities.size() > SID_MAX_SUB_AUTHORITIES)
        AtlThrow(E_INVALIDARG);
    const auto count = static_cast<BYTE>(subAuthorities.size());
    std::vector<BYTE> bytes(GetSidLengthRequired(count));
    SID_IDENTIFIER_AUTHORITY identifier{{0, 0, 0, 0, 0, authority}};
    check(InitializeSid(bytes.data(), &identifier, count));
    DWORD index = 0;
    for (const DWORD subAuthority : subAuthorities)
        *GetSidSubAuthority(bytes.data(), index++) = subAuthority;
    m_bytes = std::move(bytes);
}

CSid::CSid(PSID sid)
{
    if (!sid || !::IsValidSid(sid))
        AtlThrow(E_INVALIDARG);
    const auto first = static_cast<const BYTE*>(sid);
    m_bytes.assign(first, first + GetLengthSid(sid));
}

PSID CSid::GetPSID() const noexcept
{
    return const_cast<BYTE*>(dataOrNull(m_bytes)); // the platform's calls take no const PSID
}

CDacl::CDacl(const ACL& list)
{
    const auto raw = const_cast<ACL*>(&list);
    for (DWORD index = 0; index < list.AceCount; ++index) {
        void* ace = nullptr;
        check(GetAce(raw, index, &ace));
        const auto first = static_cast<const BYTE*>(ace);
        m_entries.emplace_back(first, first + static_cast<const ACE_HEADER*>(ace)->AceSize);
    }
}

bool CDacl::AddAllowedAce(const CSid& sid, ACCESS_MASK mask, BYTE flags)
{
    if (!sid.IsValid())
        return false;
    constexpr size_t sidStart = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    const DWORD sidSize = GetLengthSid(sid.GetPSID());
    std::vector<BYTE> entry(sidStart + sidSize);
    const ACE_HEADER header{ACCESS_ALLOWED_ACE_TYPE, flags, static_cast<WORD>(entry.size())};
    std::memcpy(entry.data(), &header, sizeof header);
    std::memcpy(entry.data() + offsetof(ACCESS_ALLOWED_ACE, Mask), &mask, sizeof mask);
    std::memcpy(entry.data() + sidStart, sid.GetPSID(), sidSize);
    m_entries.push_back(std::move(entry));
    return true;
}

CSid CDacl::GetAceSid(UINT index) const
{
    const std::vector<BYTE>& entry = m_entries.at(index);
    const size_t offset = sidOffset(entry);
    constexpr size_t sidHeader = offsetof(SID, SubAuthority);
    if (offset == 0 || entry.size() < offset + sidHeader)
        return {};
    // The identifier itself says how many sub-authorities it has: they must fit into the entry.
    const BYTE count = entry[offset + offsetof(SID, SubAuthorityCount)];
    if (entry.size() - offset - sidHeader < count * sizeof(DWORD))
        return {};
    std::vector<BYTE> sid(entry.begin() + static_cast<ptrdiff_t>(offset), entry.end());
    return ::IsValidSid(sid.data()) ? CSid(sid.data()) : CSid();
}

const ACL* CDacl::GetPACL() const
{
    if (m_null)
        return nullptr;
    size_t size = sizeof(ACL);
    for (const auto& entry : m_entries)
        size += entry.size();
    if (size > MAXWORD)
        AtlThrow(statusFromError(ERROR_ALLOTTED_SPACE_EXCEEDED));
    std::vector<BYTE> bytes(size);
    const auto list = reinterpret_cast<ACL*>(bytes.data());
    check(InitializeAcl(list, static_cast<DWORD>(size), ACL_REVISION));
    for (const auto& entry : m_entries) {
        std::vector<BYTE> copy = entry; // AddAce takes no const bytes
        // Object entries need the higher revision, which AddAce raises the list to.
        const DWORD revision = sidOffset(entry) > offsetof(ACCESS_ALLOWED_ACE, SidStart)
                                   ? ACL_REVISION_DS
                                   : ACL_REVISION;
        check(AddAce(list, revision, MAXDWORD, copy.data(), static_cast<DWORD>(copy.size())));
    }
    m_list = std::move(bytes);
    return reinterpret_cast<const ACL*>(m_list.data());
}

CSecurityDesc::CSecurityDesc(const SECURITY_DESCRIPTOR& descriptor)
{
    const auto raw = const_cast<SECURITY_DESCRIPTOR*>(&descriptor);
    BOOL defaulted = FALSE;
    PSID sid = nullptr;
    check(GetSecurityDescriptorOwner(raw, &sid, &defaulted));
    if (sid)
        SetOwner(CSid(sid));
    check(GetSecurityDescriptorGroup(raw, &sid, &defaulted));
    if (sid)
        SetGroup(CSid(sid));
    BOOL present = FALSE;
    ACL* list = nullptr;
    check(GetSecurityDescriptorDacl(raw, &present, &list, &defaulted));
    if (present)
        storeList(list, m_dacl, SetSecurityDescriptorDacl);
    check(GetSecurityDescriptorSacl(raw, &present, &list, &defaulted));
    if (present)
        storeList(list, m_sacl, SetSecurityDescriptorSacl);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    check(GetSecurityDescriptorControl(raw, &control, &revision));
    check(SetSecurityDescriptorControl(
        absolute(), settableControl,
        static_cast<SECURITY_DESCRIPTOR_CONTROL>(control & settableControl)));
}

SECURITY_DESCRIPTOR* CSecurityDesc::absolute()
{
    if (m_descriptor.empty()) {
        std::vector<BYTE> bytes(sizeof(SECURITY_DESCRIPTOR));
        check(InitializeSecurityDescriptor(bytes.data(), SECURITY_DESCRIPTOR_REVISION));
        m_descriptor = std::move(bytes);
    }
    return reinterpret_cast<SECURITY_DESCRIPTOR*>(m_descriptor.data());
}

void CSecurityDesc::storeList(const ACL* list, std::vector<BYTE>& copy,
                              BOOL(WINAPI* set)(PSECURITY_DESCRIPTOR, BOOL, PACL, BOOL))
{
    std::vector<BYTE> bytes;
    if (list) {
        const auto first = reinterpret_cast<const BYTE*>(list);
        bytes.assign(first, first + list->AclSize);
    }
    check(set(absolute(), TRUE, reinterpret_cast<ACL*>(dataOrNull(bytes)), FALSE));
    copy = std::move(bytes); // moving keeps the address that was set
}

void CSecurityDesc::SetOwner(const CSid& owner)
{
    CSid copy = owner;
    check(SetSecurityDescriptorOwner(absolute(), copy.GetPSID(), FALSE));
    m_owner = std::move(copy);
}

void CSecurityDesc::SetGroup(const CSid& group)
{
    CSid copy = group;
    check(SetSecurityDescriptorGroup(absolute(), copy.GetPSID(), FALSE));
    m_group = std::move(copy);
}

void CSecurityDesc::SetDacl(const CDacl& list)
{
    storeList(list.GetPACL(), m_dacl, SetSecurityDescriptorDacl);
}

CDacl CSecurityDesc::GetDacl() const
{
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    if (const auto descriptor = GetPSECURITY_DESCRIPTOR())
        check(GetSecurityDescriptorDacl(const_cast<SECURITY_DESCRIPTOR*>(descriptor), &present,
                                        &list, &defaulted));
    if (list)
        return CDacl(*list);
    CDacl none;
    if (present)
        none.SetNull();
    return none;
}

const SECURITY_DESCRIPTOR* CSecurityDesc::GetPSECURITY_DESCRIPTOR() const noexcept
{
    return reinterpret_cast<const SECURITY_DESCRIPTOR*>(dataOrNull(m_descriptor));
}

bool CAccessToken::GetProcessToken(DWORD access) noexcept
{
    return OpenProcessToken(GetCurrentProcess(), access, m_token.put()) != FALSE;
}

CSid CAccessToken::GetUser() const
{
    return tokenSid(m_token.get(), TokenUser);
}

CSid CAccessToken::GetPrimaryGroup() const
{
    return tokenSid(m_token.get(), TokenPrimaryGroup);
}

CSecurityDesc ProcessDescriptor()
{
    CAccessToken token;
    if (!token.GetProcessToken(TOKEN_QUERY))
        throwLastError();
    CSecurityDesc descriptor;
    descriptor.SetOwner(token.GetUser());
    descriptor.SetGroup(token.GetPrimaryGroup());
    return descriptor;
}

} // namespace ATL
