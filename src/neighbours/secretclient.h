#pragma once

#include "common/scoped.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What a program needs to use the secret store of VLFPApi.dll for its own user.

// CSecretBytes overwrites its bytes when they go. They are sized once and never grow, since a
// vector that grows leaves copies in freed memory.
struct CSecretBytes {
    std::vector<BYTE> bytes;

    CSecretBytes() = default;
    explicit CSecretBytes(size_t size) : bytes(size) {}
    explicit CSecretBytes(std::vector<BYTE>&& taken) noexcept : bytes(std::move(taken)) {}
    CSecretBytes(CSecretBytes&&) noexcept = default;
    CSecretBytes& operator=(CSecretBytes&&) = delete;
    ~CSecretBytes() { Wipe(bytes.data(), bytes.capacity()); }

    // Shorten cuts off the end.
    void Shorten(size_t size) noexcept
    {
        Wipe(bytes.data() + size, bytes.size() - size);
        bytes.resize(size);
    }

private:
    static void Wipe(BYTE* first, size_t size) noexcept
    {
        if (size > 0)
            SecureZeroMemory(first, size);
    }
};

// secretFromUtf8 gives the form of a stored secret: UTF-16 with its terminating zero.
//
// Returns: 0; 0x80070459 for bytes that are no UTF-8 or empty, value untouched
LONG secretFromUtf8(std::string_view text, std::vector<BYTE>& value);

// CSecretClient is the store of this process's user, in the library of this program's folder or
// else of the system's. Its operations give the store's status.
class CSecretClient
{
public:
    CSecretClient();

    // Status is 0, or why the store can't be used: library, function or user not found. The
    // operations may be used only when it is 0.
    LONG Status() const noexcept { return m_status; }

    bool Exists(const std::wstring& name) const;
    LONG Store(const std::wstring& name, const std::vector<BYTE>& value) const;
    LONG Delete(const std::wstring& name) const;

    // Size asks for a secret's size in bytes; Read fills value, which has that size.
    LONG Size(const std::wstring& name, uint32_t& size) const;
    LONG Read(const std::wstring& name, CSecretBytes& value) const;

private:
    template <class Function> Function Find(const char* name) noexcept;

    CLoadedModule m_library;
    std::wstring m_user; // domain\account
    LONG m_status = 0;
    LONG (*m_exists)(const wchar_t*, uint32_t, const wchar_t*) = nullptr;
    LONG (*m_store)(const wchar_t*, uint32_t, const wchar_t*, const BYTE*, uint32_t) = nullptr;
    LONG (*m_read)(const wchar_t*, uint32_t, const wchar_t*, BYTE*, uint32_t*) = nullptr;
    LONG (*m_delete)(const wchar_t*, uint32_t, const wchar_t*) = nullptr;
};
