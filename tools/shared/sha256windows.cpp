#include "common/scoped.h"
#include "shared/hextext.h"
#include "shared/sha256.h"
#include "shared/toolerror.h"

#include <windows.h>
#include <bcrypt.h>

#include <algorithm>
#include <array>

namespace {

struct hashHandle {
    using value_type = BCRYPT_HASH_HANDLE;
    static BCRYPT_HASH_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_HASH_HANDLE h) noexcept { BCryptDestroyHash(h); }
};
struct algorithmHandle {
    using value_type = BCRYPT_ALG_HANDLE;
    static BCRYPT_ALG_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_ALG_HANDLE h) noexcept { BCryptCloseAlgorithmProvider(h, 0); }
};

void check(NTSTATUS status)
{
    if (status < 0)
        throw CToolError("the system makes no SHA-256 checksums");
}

} // namespace

struct CSha256::State {
    CScoped<algorithmHandle> algorithm; // outlives the hash
    CScoped<hashHandle> hash;
};

CSha256::CSha256() : m_state(std::make_unique<State>())
{
    check(
        BCryptOpenAlgorithmProvider(m_state->algorithm.put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    check(
        BCryptCreateHash(m_state->algorithm.get(), m_state->hash.put(), nullptr, 0, nullptr, 0, 0));
}

CSha256::~CSha256() = default;

void CSha256::Add(std::span<const uint8_t> bytes)
{
    constexpr size_t most = 1 << 30; // of one call, whose count has 32 bits
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(most, bytes.size())))
        check(BCryptHashData(m_state->hash.get(), const_cast<PUCHAR>(bytes.data()), // only read
                             static_cast<ULONG>(std::min(most, bytes.size())), 0));
}

std::string CSha256::Text()
{
    std::array<uint8_t, 32> digest{};
    check(BCryptFinishHash(m_state->hash.get(), digest.data(), digest.size(), 0));
    return hexText(digest);
}
