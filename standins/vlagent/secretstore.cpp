#include "vlagent/secretstore.h"

#include "neighbours/secretclient.h"

#include <bcrypt.h>

#include <array>

LONG storeSecret(const std::wstring& name, std::string_view value)
{
    const CSecretClient store;
    if (store.Status() != S_OK)
        return store.Status();
    CSecretBytes wide;
    const LONG status = secretFromUtf8(value, wide.bytes);
    return status == S_OK ? store.Store(name, wide.bytes) : status;
}

std::string sha256Text(std::string_view bytes)
{
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0) != 0)
        return {};
    std::array<UCHAR, 32> digest{};
    const auto input = reinterpret_cast<UCHAR*>(const_cast<char*>(bytes.data()));
    const NTSTATUS status =
        BCryptHash(algorithm, nullptr, 0, input, static_cast<ULONG>(bytes.size()), digest.data(),
                   static_cast<ULONG>(digest.size()));
    BCryptCloseAlgorithmProvider(algorithm, 0);
    if (status != 0)
        return {};
    std::string text;
    for (const UCHAR value : digest) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[value >> 4];
        text += digits[value & 15];
    }
    return text;
}
