#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/patchimport.h"
#include "vlfpapi/vlfpapi.h"

namespace {

using bytes = std::vector<BYTE>;

constexpr LONG notFound = static_cast<LONG>(0x80070002);
constexpr LONG invalidData = static_cast<LONG>(0x8007000D);
constexpr wchar_t policyKey[] = LR"(SOFTWARE\Veltrano\VLFPApi\Policy)";
constexpr wchar_t secretKey[] = LR"(SOFTWARE\Veltrano\VLFPApi\Secrets\3\HOME/ann)";
constexpr wchar_t user[] = L"HOME\\ann";
constexpr wchar_t setting[] = L"CommonSettings\\DisableApps";

LSTATUS WINAPI DeniedKey()
{
    return ERROR_ACCESS_DENIED;
}

class PolicyLibrary : public testing::Test
{
protected:
    ~PolicyLibrary() override
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\VLFPApi)");
        RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano\VLFPApi)");
    }

    void ExpectSetting(LONG status, uint64_t size, uint64_t value) const
    {
        VLFPPolicyRecord_t records[] = {{L"Other", 0, 0, 0, 6, 0}, {setting, 0, 0, 0, 5, 0}};
        EXPECT_EQ(VLFPGetPolicySettingsEx(2, records), S_OK);
        EXPECT_EQ(records[0].status, notFound);
        EXPECT_EQ(records[1].status, status);
        EXPECT_EQ(records[1].size, size);
        EXPECT_EQ(records[1].value, value);
    }
};

TEST_F(PolicyLibrary, TheMachinesValueComesBeforeTheUsers)
{
    VLFPPolicyRecord_t record = {setting, 0, 0, 4, 0xFFFFFFFF00000002, 0};
    {
        const importPatch_t denied("RegCreateKeyExW", &DeniedKey);
        EXPECT_EQ(VLFPSetPolicySettingsEx(1, &record), static_cast<LONG>(0x80070005));
    }
    ExpectSetting(notFound, 0, 5); // nor was it kept for the user alone
    const DWORD own = 7;
    RegSetKeyValueW(HKEY_CURRENT_USER, policyKey, setting, REG_DWORD, &own, sizeof own);
    ExpectSetting(1, 4, 7);
    EXPECT_EQ(VLFPSetPolicySettingsEx(1, &record), S_OK);
    ExpectSetting(0, 4, 2);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, policyKey, setting, REG_SZ, L"yes", 8);
    ExpectSetting(invalidData, 0, 5);
    EXPECT_EQ(VLFPGetPolicySettingsEx(1, nullptr), E_INVALIDARG);
    record.name = nullptr;
    EXPECT_EQ(VLFPSetPolicySettingsEx(1, &record), E_INVALIDARG);
}

TEST_F(PolicyLibrary, ASecretIsKeptSealedUnderUserKindAndName)
{
    const bytes value = {'p', 'l', 'a', 'i', 'n', 't', 'e', 'x', 't', 0, 0};
    bytes out(4096);
    uint32_t size = 4096;
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", out.data(), &size), notFound);
    EXPECT_EQ(VLFPStoreSecret(user, 3, L"s", out.data(), 4096), S_OK);
    EXPECT_EQ(VLFPStoreSecret(user, 3, L"s", value.data(), 11), S_OK); // in the other's place
    EXPECT_EQ(VLFPDoesSecretExist(user, 3, L"s"), 1);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\bob", 3, L"s"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(user, 2, L"s"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(user, 3, L"t"), 0);
    DWORD sealedSize = 4096;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, secretKey, L"s", RRF_RT_REG_BINARY, nullptr,
                           out.data(), &sealedSize),
              ERROR_SUCCESS);
    EXPECT_EQ(std::search(out.begin(), out.end(), value.begin(), value.end() - 2), out.end());

    out.assign(11, 0xEE);
    size = 10;
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", out.data(), &size), static_cast<LONG>(0x800700EA));
    EXPECT_EQ(size, 11u);
    EXPECT_EQ(out, bytes(11, 0xEE));
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", out.data(), &size), S_OK);
    EXPECT_EQ(out, value);

    EXPECT_EQ(VLFPStoreSecret(user, 3, L"s", nullptr, 3), E_INVALIDARG);
    EXPECT_EQ(VLFPStoreSecret(L"", 3, L"s", value.data(), 3), E_INVALIDARG);
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", out.data(), nullptr), E_INVALIDARG);
    RegSetKeyValueW(HKEY_CURRENT_USER, secretKey, L"s", REG_BINARY, value.data(), 11);
    EXPECT_EQ(VLFPReadSecret(user, 3, L"s", out.data(), &size), invalidData);
    EXPECT_EQ(VLFPDeleteSecret(user, 3, L"s"), S_OK);
    EXPECT_EQ(VLFPDeleteSecret(user, 3, L"s"), notFound);
}

} // namespace
