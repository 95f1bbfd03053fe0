#include "shared/hextext.h"
#include "shared/sha256.h"

#include <sha2.h>

#include <array>

struct CSha256::State {
    SHA2_CTX context{};
};

CSha256::CSha256() : m_state(std::make_unique<State>())
{
    SHA256Init(&m_state->context);
}

CSha256::~CSha256() = default;

void CSha256::Add(std::span<const uint8_t> bytes)
{
    SHA256Update(&m_state->context, bytes.data(), bytes.size());
}

std::string CSha256::Text()
{
    std::array<uint8_t, SHA256_DIGEST_LENGTH> digest{};
    SHA256Final(digest.data(), &m_state->context);
    return hexText(digest);
}
