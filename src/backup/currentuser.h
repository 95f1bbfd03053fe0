#pragma once

#include <windows.h>

#include <memory>
#include <string>

// CCurrentUser is the user in whose name the calling thread runs: the impersonated one, else that
// of the process.
class CCurrentUser
{
public:
    // Reads the thread's token. The thread keeps its identity, also when this fails.
    //
    // Errors: raises the last error of a failed token call, E_INVALIDARG for a damaged identifier,
    //         E_OUTOFMEMORY
    // Source: OpenThreadToken, GetTokenInformation
    CCurrentUser();

    // Qualified looks the account up on this machine.
    //
    // Returns: domain\account; empty if it can't be found
    // Source:  LookupAccountSidW
    const std::wstring& Qualified();

    const std::wstring& Account() const noexcept { return m_account; }
    const std::wstring& Domain() const noexcept { return m_domain; }

private:
    std::unique_ptr<BYTE[]> m_sid;
    std::wstring m_account; // this and the rest: nothing until looked up
    std::wstring m_domain;
    std::wstring m_qualified;
    SID_NAME_USE m_use = SidTypeUnknown;
};
