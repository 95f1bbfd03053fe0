#include "neighbours/secretclient.h"

#include "atl/exception.h"
#include "atl/security.h"
#include "common/status.h"
#include "neighbours/vlfpapi.h"

#include <array>

namespace {

// The qualified name domain\account of this process's user; empty on failure, with the last error
// set.
std::wstring processUser()
{
    ATL::CAccessToken token;
    if (!token.GetProcessToken(TOKEN_QUERY))
        return {};
    const ATL::CSid user = token.GetUser();
    std::array<wchar_t, 257> account{};
    std::array<wchar_t, 257> domain{};
    DWORD accountSize = account.size();
    DWORD domainSize = domain.size();
    SID_NAME_USE use{};
    if (!LookupAccountSidW(nullptr, user.GetPSID(), account.data(), &accountSize, domain.data(),
                           &domainSize, &use))
        return {};
    return std::wstring(domain.data()) + L'\\' + account.data();
}

LONG lastStatus()
{
    return statusFromError(GetLastError());
}

} // namespace

LONG secretFromUtf8(std::string_view text, std::vector<BYTE>& value)
{
    const int length = static_cast<int>(text.size());
    const int units =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    if (units <= 0)
        return statusFromError(ERROR_NO_UNICODE_TRANSLATION);
    value.assign((static_cast<size_t>(units) + 1) * sizeof(wchar_t), 0);
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length,
                        reinterpret_cast<wchar_t*>(value.data()), units);
    return S_OK;
}

template <class Function> Function CSecretClient::Find(const char* name) noexcept
{
    auto* const found = reinterpret_cast<void*>(GetProcAddress(m_library.get(), name));
    if (!found)
        m_status = lastStatus();
    return reinterpret_cast<Function>(found);
}

// Never from the current folder: another library of that name would get the secret.
CSecretClient::CSecretClient()
    : m_library(LoadLibraryExW(L"VLFPApi.dll", nullptr,
                               LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32))
{
    if (!m_library) {
        m_status = lastStatus();
        return;
    }
    m_exists = Find<decltype(m_exists)>("VLFPDoesSecretExist");
    m_store = Find<decltype(m_store)>("VLFPStoreSecret");
    m_read = Find<decltype(m_read)>("VLFPReadSecret");
    m_delete = Find<decltype(m_delete)>("VLFPDeleteSecret");
    if (m_status != S_OK)
        return;
    try {
        m_user = processUser();
        if (m_user.empty())
            m_status = lastStatus();
    } catch (const ATL::CAtlException& exception) {
        m_status = exception.m_hr;
    }
}

bool CSecretClient::Exists(const std::wstring& name) const
{
    return m_exists(m_user.c_str(), secretKind, name.c_str()) == 1;
}

LONG CSecretClient::Store(const std::wstring& name, const std::vector<BYTE>& value) const
{
    return m_store(m_user.c_str(), secretKind, name.c_str(), value.data(),
                   static_cast<uint32_t>(value.size()));
}

LONG CSecretClient::Delete(const std::wstring& name) const
{
    return m_delete(m_user.c_str(), secretKind, name.c_str());
}

LONG CSecretClient::Size(const std::wstring& name, uint32_t& size) const
{
    return m_read(m_user.c_str(), secretKind, name.c_str(), nullptr, &size);
}

LONG CSecretClient::Read(const std::wstring& name, CSecretBytes& value) const
{
    auto size = static_cast<uint32_t>(value.bytes.size());
    const LONG status = m_read(m_user.c_str(), secretKind, name.c_str(), value.bytes.data(), &size);
    if (status == S_OK)
        value.Shorten(size);
    return status;
}
