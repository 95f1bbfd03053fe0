#include "plugin/registrar.h"

#include "common/status.h"

#include <cwchar>
#include <new>
#include <string>

namespace VLKT_SDK {

namespace {

constexpr wchar_t rootPath[] = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";

// Each string with its terminator, and one more after the last.
constexpr wchar_t shellVersions[] = L"6.0\0007.0\0008.0\0";

HRESULT statusFromResult(LSTATUS result) noexcept
{
    return HRESULT_FROM_WIN32(result); // a positive one keeps only its low 16 bits
}

DWORD bytesWithTerminator(const wchar_t* text) noexcept
{
    return static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t));
}

// withClassText runs body with the text of the class identifier.
template <class Body> HRESULT withClassText(REFCLSID clsid, Body body) noexcept
{
    CTaskText text;
    const HRESULT status = StringFromCLSID(clsid, text.put());
    if (FAILED(status))
        return status;
    try {
        return body(text.get());
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

} // namespace

CRegisterComponents::CRegisterComponents() noexcept
{
    m_status = statusFromResult(RegCreateKeyExW(HKEY_LOCAL_MACHINE, rootPath, 0, nullptr,
                                                REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                                                m_root.put(), nullptr));
}

HRESULT CRegisterComponents::PrepareComponent(REFCLSID, const wchar_t*)
{
    return S_OK;
}

HRESULT CRegisterComponents::RegisterComponent(const wchar_t* role, const wchar_t* classId,
                                               const wchar_t* path) noexcept
{
    if (FAILED(m_status))
        return m_status;
    try {
        const std::wstring name = std::wstring(role) + L'\\' + classId;
        CRegistryKey key;
        LSTATUS result =
            RegCreateKeyExW(m_root.get(), name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_WRITE, nullptr, key.put(), nullptr);
        if (result == ERROR_SUCCESS)
            result = RegSetValueExW(key.get(), L"", 0, REG_EXPAND_SZ,
                                    reinterpret_cast<const BYTE*>(path), bytesWithTerminator(path));
        if (result == ERROR_SUCCESS)
            RegSetValueExW(key.get(), L"TargetShellVersions", 0, REG_MULTI_SZ,
                           reinterpret_cast<const BYTE*>(shellVersions), sizeof shellVersions);
        return statusFromResult(result);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

CUnregisterComponents::CUnregisterComponents() noexcept
{
    m_status =
        statusFromResult(RegOpenKeyExW(HKEY_LOCAL_MACHINE, rootPath, 0, KEY_WRITE, m_root.put()));
}

HRESULT CUnregisterComponents::UnregisterSubkey(const wchar_t* basePath, const wchar_t* subPath,
                                                REFCLSID clsid)
{
    return withClassText(clsid, [&](const wchar_t* text) {
        return RemoveKeyChain(basePath, (std::wstring(subPath) + L'\\' + text).c_str());
    });
}

HRESULT CUnregisterComponents::UnregisterComponent(const wchar_t* role, REFCLSID clsid)
{
    return withClassText(clsid, [&](const wchar_t* text) { return RemoveKeyChain(role, text); });
}

HRESULT CUnregisterComponents::RemoveKeyChain(const wchar_t* first, const wchar_t* second)
{
    if (FAILED(m_status))
        return m_status;
    try {
        std::wstring path = std::wstring(first) + L'\\' + second;
        while (!path.empty()) {
            DWORD subkeys = 0;
            {
                CRegistryKey key;
                LSTATUS result = RegOpenKeyExW(m_root.get(), path.c_str(), 0, KEY_READ, key.put());
                if (result == ERROR_SUCCESS)
                    result =
                        RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr,
                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
                if (result != ERROR_SUCCESS)
                    return statusFromResult(result);
            }
            if (subkeys != 0)
                return S_OK; // still in use by others; values alone don't keep the key
            const LSTATUS result = RegDeleteKeyW(m_root.get(), path.c_str());
            if (result != ERROR_SUCCESS)
                return statusFromResult(result);
            const size_t cut = path.rfind(L'\\');
            path.resize(cut == std::wstring::npos ? 0 : cut);
        }
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

} // namespace VLKT_SDK
