#include "common/scoped.h"
#include "common/status.h"
#include "neighbours/vlfpapi.h"

#include <wincrypt.h>

#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr DWORD largestSecret = 0x100000; // the registry is no place for more

// secretEntry_t names the place of one secret: a key for the kind and user, a value for the name.
struct secretEntry_t {
    std::wstring key;
    const wchar_t* name;

    secretEntry_t(const wchar_t* user, uint32_t kind, const wchar_t* valueName)
        : key(L"SOFTWARE\\Veltrano\\VLFPApi\\Secrets\\" + std::to_wstring(kind) + L"\\"),
          name(valueName)
    {
        for (; *user; ++user)
            key += *user == L'\\' ? L'/' : *user; // no account name has this one
    }
};

bool areNames(const wchar_t* user, const wchar_t* name)
{
    return user && *user && name && *name;
}

LONG statusOf(LSTATUS error)
{
    return statusFromError(static_cast<DWORD>(error));
}

template <class Body>
LONG withEntry(const wchar_t* user, uint32_t kind, const wchar_t* name, Body body)
{
    if (!areNames(user, name))
        return E_INVALIDARG;
    try {
        return body(secretEntry_t(user, kind, name));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

LSTATUS readProtected(const secretEntry_t& entry, std::vector<BYTE>& bytes)
{
    CRegistryKey key;
    LSTATUS error =
        RegOpenKeyExW(HKEY_CURRENT_USER, entry.key.c_str(), 0, KEY_QUERY_VALUE, key.put());
    if (error != ERROR_SUCCESS)
        return error;
    DWORD type = 0;
    DWORD size = 0;
    error = RegQueryValueExW(key.get(), entry.name, nullptr, &type, nullptr, &size);
    while (error == ERROR_SUCCESS) {
        if (type != REG_BINARY)
            return ERROR_INVALID_DATA;
        bytes.resize(size);
        error = RegQueryValueExW(key.get(), entry.name, nullptr, &type, bytes.data(), &size);
        if (error == ERROR_MORE_DATA) {
            error = ERROR_SUCCESS; // another caller stored a longer one in between
            continue;
        }
        if (error == ERROR_SUCCESS)
            bytes.resize(size);
        break;
    }
    return error;
}

} // namespace

LONG VLFPDoesSecretExist(const wchar_t* user, uint32_t kind, const wchar_t* name)
{
    return withEntry(user, kind, name, [](const secretEntry_t& entry) -> LONG {
               std::vector<BYTE> bytes;
               return readProtected(entry, bytes) == ERROR_SUCCESS ? 1 : 0;
           }) == 1;
}

LONG VLFPStoreSecret(const wchar_t* user, uint32_t kind, const wchar_t* name, const BYTE* value,
                     uint32_t size)
{
    if (!value || size == 0 || size > largestSecret)
        return E_INVALIDARG;
    return withEntry(user, kind, name, [&](const secretEntry_t& entry) -> LONG {
        DATA_BLOB plain = {size, const_cast<BYTE*>(value)}; // an input only, in spite of its type
        DATA_BLOB sealed = {};
        if (!CryptProtectData(&plain, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                              &sealed))
            return statusFromError(GetLastError());
        const CLocalMemory owner(sealed.pbData);
        CRegistryKey key;
        LSTATUS error =
            RegCreateKeyExW(HKEY_CURRENT_USER, entry.key.c_str(), 0, nullptr,
                            REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr, key.put(), nullptr);
        if (error == ERROR_SUCCESS)
            error =
                RegSetValueExW(key.get(), entry.name, 0, REG_BINARY, sealed.pbData, sealed.cbData);
        return statusOf(error);
    });
}

LONG VLFPReadSecret(const wchar_t* user, uint32_t kind, const wchar_t* name, BYTE* value,
                    uint32_t* size)
{
    if (!size)
        return E_INVALIDARG;
    return withEntry(user, kind, name, [&](const secretEntry_t& entry) -> LONG {
        std::vector<BYTE> bytes;
        const LSTATUS error = readProtected(entry, bytes);
        if (error != ERROR_SUCCESS)
            return statusOf(error);
        DATA_BLOB sealed = {static_cast<DWORD>(bytes.size()), bytes.data()};
        DATA_BLOB plain = {};
        if (bytes.empty() || !CryptUnprotectData(&sealed, nullptr, nullptr, nullptr, nullptr,
                                                 CRYPTPROTECT_UI_FORBIDDEN, &plain))
            return statusOf(ERROR_INVALID_DATA);
        const CLocalMemory owner(plain.pbData);
        const bool fits = value && *size >= plain.cbData;
        if (fits)
            std::memcpy(value, plain.pbData, plain.cbData);
        *size = plain.cbData;
        SecureZeroMemory(plain.pbData, plain.cbData);
        return fits || !value ? S_OK : statusOf(ERROR_MORE_DATA);
    });
}

LONG VLFPDeleteSecret(const wchar_t* user, uint32_t kind, const wchar_t* name)
{
    return withEntry(user, kind, name, [](const secretEntry_t& entry) -> LONG {
        CRegistryKey key;
        LSTATUS error =
            RegOpenKeyExW(HKEY_CURRENT_USER, entry.key.c_str(), 0, KEY_SET_VALUE, key.put());
        if (error == ERROR_SUCCESS)
            error = RegDeleteValueW(key.get(), entry.name);
        return statusOf(error);
    });
}
