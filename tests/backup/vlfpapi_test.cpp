#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/patchimport.h"
#include "vlfpapi/vlfpapi.h"

namespace {

using bytes = std::vector<BYTE>;

constexpr LONG notFound = static_cast<LONG>(0x80070002);
constexpr wchar_t policyKey[] = L"SOFTWARE\\Veltrano\\VLFPApi\\Policy";
constexpr wchar_t setting[] =
    L"CommonSettings\\{42F9948B-B690-4325-A073-63A8BF31FF32}\\DisableApps";

LSTATUS WINAPI DeniedKey(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, const SECURITY_ATTRIBUTES*,
                         PHKEY, LPDWORD)
{
    return ERROR_ACCESS_DENIED;
}

class PolicyLibrary : public testing::Test
{
protected:
    ~PolicyLibrary() override
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\VLFPApi");
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\VLFPApi");
    }

    VLFPPolicyRecord_t Get() const
    {
        VLFPPolicyRecord_t record = {setting, 0, 0, 0, 0, 0};
        EXPECT_EQ(VLFPGetPolicySettingsEx(1, &record), S_OK);
        return record;
    }

    LONG Set(uint64_t value) const
    {
        VLFPPolicyRecord_t record = {setting, 0, 0, 4, value, 0};
        return VLFPSetPolicySettingsEx(1, &record);
    }
};

TEST_F(PolicyLibrary, TheMachinesValueComesBeforeTheUsers)
{
    EXPECT_EQ(Get().status, notFound);
    const DWORD own = 7;
    RegSetKeyValueW(HKEY_CURRENT_USER, policyKey, setting, REG_DWORD, &own, sizeof own);
    VLFPPolicyRecord_t record = Get();
    EXPECT_EQ(record.status, 1);
    EXPECT_EQ(record.value, 7u);
    ASSERT_EQ(Set(0xFFFFFFFF00000002), S_OK);
    record = Get();
    EXPECT_EQ(record.status, 0);
    EXPECT_EQ(record.value, 2u);
    EXPECT_EQ(record.size, 4u);
}

TEST_F(PolicyLibrary, ADeniedWriteIsAFailureAndLeavesTheUserAlone)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "RegCreateKeyExW",
                              reinterpret_cast<void*>(&DeniedKey));
    ASSERT_TRUE(patch.found());
    EXPECT_EQ(Set(1), static_cast<LONG>(0x80070005));
    EXPECT_EQ(Get().status, notFound);
}

TEST_F(PolicyLibrary, AValueThatIsNoNumberIsReportedForItsRecordAlone)
{
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, policyKey, setting, REG_SZ, L"yes", 8);
    VLFPPolicyRecord_t records[] = {{setting, 0, 0, 0, 5, 0}, {L"Other", 0, 0, 0, 6, 0}};
    EXPECT_EQ(VLFPGetPolicySettingsEx(2, records), S_OK);
    EXPECT_EQ(records[0].status, static_cast<LONG>(0x8007000D));
    EXPECT_EQ(records[0].value, 5u);
    EXPECT_EQ(records[1].status, notFound);
    EXPECT_EQ(VLFPGetPolicySettingsEx(1, nullptr), E_INVALIDARG);
    records[1].name = nullptr;
    EXPECT_EQ(VLFPSetPolicySettingsEx(2, records), E_INVALIDARG);
}

TEST_F(PolicyLibrary, ASecretIsKeptSealedUnderUserKindAndName)
{
    const bytes value = {'p', 'l', 'a', 'i', 'n', 't', 'e', 'x', 't', 0, 0};
    ASSERT_EQ(VLFPStoreSecret(L"HOME\\ann", 3, L"s", value.data(), 11), S_OK);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\ann", 3, L"s"), 1);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\bob", 3, L"s"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\ann", 2, L"s"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(L"HOME\\ann", 3, L"t"), 0);
    EXPECT_EQ(VLFPDoesSecretExist(nullptr, 3, L"s"), 0);

    bytes sealed(4096);
    DWORD size = 4096;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\VLFPApi\\Secrets\\3\\HOME/ann",
                           L"s", RRF_RT_REG_BINARY, nullptr, sealed.data(), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(std::search(sealed.begin(), sealed.end(), value.begin(), value.end() - 2),
              sealed.end());

    uint32_t asked = 0;
    EXPECT_EQ(VLFPReadSecret(L"HOME\\ann", 3, L"s", nullptr, &asked), S_OK);
    EXPECT_EQ(asked, 11u);
    bytes out(11, 0xEE);
    asked = 10;
    EXPECT_EQ(VLFPReadSecret(L"HOME\\ann", 3, L"s", out.data(), &asked),
              static_cast<LONG>(0x800700EA));
    EXPECT_EQ(asked, 11u);
    EXPECT_EQ(out, bytes(11, 0xEE));
    EXPECT_EQ(VLFPReadSecret(L"HOME\\ann", 3, L"s", out.data(), &asked), S_OK);
    EXPECT_EQ(out, value);
}

TEST_F(PolicyLibrary, ASecretIsReplacedDeletedAndRefusedClearly)
{
    const BYTE longer[] = {1, 2, 3};
    const BYTE shorter[] = {9};
    uint32_t size = 3;
    BYTE out[3] = {};
    EXPECT_EQ(VLFPReadSecret(L"u", 3, L"s", out, &size), notFound);
    EXPECT_EQ(VLFPDeleteSecret(L"u", 3, L"s"), notFound);
    EXPECT_EQ(VLFPStoreSecret(L"u", 3, L"s", longer, 3), S_OK);
    EXPECT_EQ(VLFPStoreSecret(L"u", 3, L"s", shorter, 1), S_OK);
    EXPECT_EQ(VLFPReadSecret(L"u", 3, L"s", out, &size), S_OK);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(out[0], 9);
    EXPECT_EQ(VLFPDeleteSecret(L"u", 3, L"s"), S_OK);
    EXPECT_EQ(VLFPDoesSecretExist(L"u", 3, L"s"), 0);

    EXPECT_EQ(VLFPStoreSecret(L"u", 3, L"s", nullptr, 3), E_INVALIDARG);
    EXPECT_EQ(VLFPStoreSecret(L"u", 3, L"s", longer, 0), E_INVALIDARG);
    EXPECT_EQ(VLFPStoreSecret(L"", 3, L"s", longer, 3), E_INVALIDARG);
    EXPECT_EQ(VLFPStoreSecret(L"u", 3, nullptr, longer, 3), E_INVALIDARG);
    EXPECT_EQ(VLFPReadSecret(L"u", 3, L"s", out, nullptr), E_INVALIDARG);

    RegSetKeyValueW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\VLFPApi\\Secrets\\3\\u", L"s",
                    REG_BINARY, longer, 3);
    EXPECT_EQ(VLFPReadSecret(L"u", 3, L"s", out, &size), static_cast<LONG>(0x8007000D));
}

} // namespace
