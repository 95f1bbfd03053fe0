#pragma once

#include <string>

#include "common/scoped.h"
#include "files.h"

// CSecretStore is the secret store of the policy library for the calling user. Errors: CToolError.
class CSecretStore
{
public:
    CSecretStore(); // loads VLFPApi.dll

    bool Exists(const std::wstring& name) const;
    bytes_t Read(const std::wstring& name) const;
    void Store(const std::wstring& name, const bytes_t& value) const;
    void Delete(const std::wstring& name) const;

private:
    void* Function(const char* name) const;

    CLoadedModule m_library;
    std::wstring m_user; // domain\account
};

// The one secret that a backup names.
inline constexpr wchar_t protectedStorage[] = L"KRS Protected Storage";

// wipe overwrites bytes that held a secret, in a way that the compiler keeps.
void wipe(bytes_t& bytes) noexcept;

// CSecretBytes wipes its bytes at the end.
struct CSecretBytes {
    bytes_t bytes;
    CSecretBytes() = default;
    explicit CSecretBytes(bytes_t&& taken) noexcept : bytes(std::move(taken)) {}
    CSecretBytes(CSecretBytes&&) noexcept = default;
    CSecretBytes& operator=(CSecretBytes&&) = delete;
    ~CSecretBytes() { wipe(bytes); }
};

// readSecretFrom reads a secret from a file descriptor, such as 0 for standard input: UTF-8 text, one line end behind
// it left out. The value comes back as UTF-16 with its terminating zero, the form of a secret list.
CSecretBytes readSecretFrom(int descriptor);

// writeSecretTo writes such a value as UTF-8 text.
void writeSecretTo(int descriptor, const CSecretBytes& value);

// encodeSecretList makes the secret list of one secret, for SetPluginData.
CSecretBytes encodeSecretList(const std::wstring& name, const CSecretBytes& value);
