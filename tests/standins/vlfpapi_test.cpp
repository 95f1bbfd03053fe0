#include "neighbours/vlfpapi.h"

#include <string>

#include <gtest/gtest.h>

namespace {

constexpr wchar_t user[] = L"HOME\\ann";

TEST(PolicyLibrary, ASecretIsKeptSealedUnderUserKindAndName)
{
    std::string sealed(4096, 'x'), out(9, 'x');
    const auto at = [](std::string& text) { return reinterpret_cast<BYTE*>(text.data()); };
    EXPECT_EQ(VLFPStoreSecret(user, 3, L"s", reinterpret_cast<const BYTE*>("plaintext"), 9), S_OK);
    EXPECT_EQ(VLFPDoesSecretExist(user, 3, L"s"), 1);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\bob", 3, L"s") | VLFPDoesSecretExist(user, 2, L"s"), 0);
    DWORD sealedSize = 4096;
    RegGetValueW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano\VLFPApi\Secrets\3\HOME/ann)", L"s",
                 RRF_RT_REG_BINARY, nullptr, at(sealed), &sealedSize);
    EXPECT_TRUE(sealedSize < 4096 && sealed.find("plaintext") == std::string::npos);
    uint32_t size = 8;
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", at(out), &size), static_cast<LONG>(0x800700EA));
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", at(out), &size), S_OK); // the size that is needed
    EXPECT_EQ(out, "plaintext");
}

} // namespace
