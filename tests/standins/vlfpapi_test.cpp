#include "neighbours/vlfpapi.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr LONG notFound = static_cast<LONG>(0x80070002);
constexpr wchar_t policyKey[] = LR"(SOFTWARE\Veltrano\VLFPApi\Policy)";
constexpr wchar_t secretKey[] = LR"(SOFTWARE\Veltrano\VLFPApi\Secrets\3\HOME/ann)";
constexpr wchar_t user[] = L"HOME\\ann";
constexpr wchar_t setting[] = L"CommonSettings\\DisableApps";

TEST(PolicyLibrary, TheMachinesValueComesBeforeTheUsers)
{
    const auto asked = [] {
        VLFPPolicyRecord records[] = {{L"Other", 0, 0, 0, 6, 0}, {setting, 0, 0, 0, 5, 0}};
        EXPECT_EQ(VLFPGetPolicySettingsEx(2, records), S_OK);
        EXPECT_EQ(records[0].status, notFound);
        return std::tuple(records[1].status, records[1].size, records[1].value);
    };
    const DWORD own = 7;
    VLFPPolicyRecord record = {setting, 0, 0, 4, 0xFFFFFFFF00000002, 0};
    EXPECT_EQ(asked(), std::tuple(notFound, 0u, 5u));
    RegSetKeyValueW(HKEY_CURRENT_USER, policyKey, setting, REG_DWORD, &own, sizeof own);
    EXPECT_EQ(asked(), std::tuple(1, 4u, 7u));
    EXPECT_EQ(VLFPSetPolicySettingsEx(1, &record), S_OK);
    EXPECT_EQ(asked(), std::tuple(0, 4u, 2u));
}

TEST(PolicyLibrary, ASecretIsKeptSealedUnderUserKindAndName)
{
    const std::string value = "plaintext";
    std::string out(4096, 'x');
    const auto at = [&] { return reinterpret_cast<BYTE*>(out.data()); };
    EXPECT_EQ(VLFPStoreSecret(user, 3, L"s", reinterpret_cast<const BYTE*>("plaintext"), 9), S_OK);
    EXPECT_EQ(VLFPDoesSecretExist(user, 3, L"s"), 1);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\bob", 3, L"s"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(user, 2, L"s"), 0);
    DWORD sealed = 4096;
    ASSERT_EQ(
        RegGetValueW(HKEY_CURRENT_USER, secretKey, L"s", RRF_RT_REG_BINARY, nullptr, at(), &sealed),
        ERROR_SUCCESS);
    EXPECT_EQ(out.find(value), std::string::npos);
    out.assign(9, 'x');
    uint32_t size = 8;
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", at(), &size), static_cast<LONG>(0x800700EA));
    EXPECT_EQ(size, 9u);
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", at(), &size), S_OK);
    EXPECT_EQ(out, value);
    EXPECT_EQ(VLFPDeleteSecret(user, 3, L"s"), S_OK);
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", at(), &size), notFound);
}

} // namespace
