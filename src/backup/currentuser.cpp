#include "backup/currentuser.h"

#include "common/scoped.h"
#include "common/status.h"

#include <algorithm>
#include <new>

namespace {

// CThreadIdentity puts the thread's identity back as it was when the object was made.
class CThreadIdentity
{
public:
    CThreadIdentity() noexcept
    {
        OpenThreadToken(GetCurrentThread(), MAXIMUM_ALLOWED, TRUE, m_saved.put());
    }
    CThreadIdentity(const CThreadIdentity&) = delete;
    CThreadIdentity& operator=(const CThreadIdentity&) = delete;
    ~CThreadIdentity()
    {
        RevertToSelf();
        if (m_saved)
            SetThreadToken(nullptr, m_saved.get());
    }

    bool Impersonates() const noexcept { return static_cast<bool>(m_saved); }

private:
    CKernelHandle m_saved;
};

CKernelHandle openUserToken()
{
    CKernelHandle token;
    DWORD error = ERROR_SUCCESS;
    {
        const CThreadIdentity identity;
        if (!identity.Impersonates()) {
            RevertToSelf();
            if (!ImpersonateSelf(SecurityImpersonation))
                raiseLastError();
        }
        if (!OpenThreadToken(GetCurrentThread(), MAXIMUM_ALLOWED, TRUE, token.put()))
            error = GetLastError();
    }
    if (!token)
        raiseError(error);
    return token;
}

std::unique_ptr<BYTE[]> newBytes(size_t size)
{
    try {
        return std::make_unique<BYTE[]>(size);
    } catch (const std::bad_alloc&) {
        raiseStatus(E_OUTOFMEMORY);
    }
}

void raiseIfError(DWORD error)
{
    if (error != ERROR_SUCCESS)
        raiseError(error);
}

} // namespace

CCurrentUser::CCurrentUser()
{
    const CKernelHandle token = openUserToken();
    DWORD size = 0;
    GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    if (size == 0)
        raiseIfError(GetLastError());
    // Zeroed, so that a call which fails without an error leaves no identifier.
    const auto information = newBytes(std::max<size_t>(size, sizeof(TOKEN_USER)));
    if (!GetTokenInformation(token.get(), TokenUser, information.get(), size, &size))
        raiseIfError(GetLastError());
    const PSID sid = reinterpret_cast<const TOKEN_USER*>(information.get())->User.Sid;
    if (!sid || !IsValidSid(sid))
        raiseStatus(E_INVALIDARG);
    const DWORD length = GetLengthSid(sid);
    m_sid = newBytes(length);
    CopySid(length, m_sid.get(), sid);
    if (!IsValidSid(m_sid.get()))
        raiseStatus(E_INVALIDARG);
}

const std::wstring& CCurrentUser::Qualified()
{
    DWORD accountSize = 0;
    DWORD domainSize = 0;
    SID_NAME_USE use = SidTypeUnknown;
    LookupAccountSidW(nullptr, m_sid.get(), nullptr, &accountSize, nullptr, &domainSize, &use);
    std::wstring account(accountSize, L'\0');
    std::wstring domain(domainSize, L'\0');
    if (LookupAccountSidW(nullptr, m_sid.get(), account.data(), &accountSize, domain.data(),
                          &domainSize, &use)) {
        m_account = account.c_str();
        m_domain = domain.c_str();
        m_qualified = m_domain + L'\\' + m_account;
        m_use = use;
    }
    return m_qualified;
}
