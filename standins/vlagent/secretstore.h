#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// wipedText_t is a text that is overwritten when it goes. It is sized once and never grows.
struct wipedText_t {
    std::string text;
    wipedText_t() = default;
    wipedText_t(const wipedText_t&) = delete;
    wipedText_t& operator=(const wipedText_t&) = delete;
    ~wipedText_t() { SecureZeroMemory(text.data(), text.size()); }
};

// storeSecret keeps a secret of the user of this process in VLFPApi.dll's store.
//
// name:    UTF-16
// value:   UTF-8; it is stored as UTF-16 with its terminating zero
// Returns: 0, or a status: the store's own, or why the library, the user or the value can't be used
LONG storeSecret(const std::wstring& name, std::string_view value);

// sha256Text gives the SHA-256 of bytes in lower-case hexadecimal; empty when the system has no
// such hash.
std::string sha256Text(std::string_view bytes);
