#pragma once

#include "atl/exception.h"
#include "common/scoped.h"

#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

// The security wrappers of the platform's template library, with the operations that this system
// uses. They own copies of what they are given. A failed platform call raises CAtlException with
// its status.
namespace ATL {

// CSid is one security identifier, or none.
class CSid
{
public:
    CSid() = default;

    // authority:      the last of the identifier authority's six bytes, the others are 0
    // subAuthorities: up to SID_MAX_SUB_AUTHORITIES of them
    CSid(BYTE authority, std::initializer_list<DWORD> subAuthorities);

    // sid: copied; raises E_INVALIDARG when it isn't a valid one
    explicit CSid(PSID sid);

    bool IsValid() const noexcept { return !m_bytes.empty(); }
    PSID GetPSID() const noexcept; // a loan; null while there is none

private:
    std::vector<BYTE> m_bytes;
};

// CDacl is a discretionary access list. It begins empty, which lets nobody in. A null list lets
// everybody in, and entries added to it are not handed out: one entry in it would shut all others
// out.
class CDacl
{
public:
    CDacl() = default;
    explicit CDacl(const ACL& list); // every entry is kept as it is, of whatever type

    void SetNull() noexcept { m_null = true; }

    // AddAllowedAce adds an allowed-access entry after the last one.
    //
    // Returns: false for an invalid identifier, with nothing added
    bool AddAllowedAce(const CSid& sid, ACCESS_MASK mask, BYTE flags);

    UINT GetAceCount() const noexcept { return static_cast<UINT>(m_entries.size()); }

    // GetAceSid reads the identifier of entry number index; none for a type of entry without one.
    CSid GetAceSid(UINT index) const;

    // GetPACL hands out the raw list, a loan until the next addition. Null for a null list.
    // Raises when the entries don't fit into one list.
    const ACL* GetPACL() const;

private:
    std::vector<std::vector<BYTE>> m_entries;
    bool m_null = false;
    mutable std::vector<BYTE> m_list;
};

// CSecurityDesc is a security descriptor in absolute form with all that it points to.
class CSecurityDesc
{
public:
    CSecurityDesc() = default;
    explicit CSecurityDesc(const SECURITY_DESCRIPTOR& raw); // absolute or self-relative, copied
    CSecurityDesc(const CSecurityDesc&) = delete;
    CSecurityDesc& operator=(const CSecurityDesc&) = delete;
    CSecurityDesc(CSecurityDesc&&) noexcept = default; // the parts keep their addresses
    CSecurityDesc& operator=(CSecurityDesc&&) noexcept = default;
    ~CSecurityDesc() = default;

    void SetOwner(const CSid& owner);
    void SetGroup(const CSid& group);
    void SetDacl(const CDacl& list);

    // GetDacl reads the discretionary list: an empty one when the descriptor says that it has none.
    CDacl GetDacl() const;

    // GetPSECURITY_DESCRIPTOR is a loan; null before anything was set.
    const SECURITY_DESCRIPTOR* GetPSECURITY_DESCRIPTOR() const noexcept;

private:
    SECURITY_DESCRIPTOR* absolute();
    void storeList(const ACL* list, std::vector<BYTE>& copy,
                   BOOL(WINAPI* set)(PSECURITY_DESCRIPTOR, BOOL, PACL, BOOL));

    std::vector<BYTE> m_descriptor; // points into the parts below
    CSid m_owner, m_group;
    std::vector<BYTE> m_dacl, m_sacl;
};

// CAccessToken owns an access token.
class CAccessToken
{
public:
    void Attach(HANDLE token) noexcept { m_token.reset(token); }

    // GetProcessToken opens this process's token. False leaves the last error of OpenProcessToken.
    bool GetProcessToken(DWORD access) noexcept;

    // GetUser and GetPrimaryGroup read the token's TokenUser and TokenPrimaryGroup. It must be open
    // for query.
    CSid GetUser() const;
    CSid GetPrimaryGroup() const;

private:
    CKernelHandle m_token;
};

// ProcessDescriptor begins the descriptor of an object that this process makes: the process's user
// and primary group own it, and it has no list yet.
//
// Errors: CAtlException
CSecurityDesc ProcessDescriptor();

} // namespace ATL
