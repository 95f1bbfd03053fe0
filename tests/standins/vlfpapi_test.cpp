#include "neighbours/vlfpapi.h"

#include "neighbours/secretclient.h"
#include "support/patchimport.h"

#include <string>

#include <gtest/gtest.h>

namespace {

constexpr LONG notFound = static_cast<LONG>(0x80070002);
constexpr wchar_t user[] = L"HOME\\ann";
constexpr wchar_t setting[] = L"CommonSettings\\DisableApps";

TEST(PolicyLibrary, TheMachinesValueComesBeforeTheUsers)
{
    const auto asked = [] {
        VLFPPolicyRecord records[] = {{L"Other", 0, 0, 0, 6, 0}, {setting, 0, 0, 0, 5, 0}};
        EXPECT_EQ(VLFPGetPolicySettingsEx(2, records), S_OK);
        EXPECT_EQ(records[0].status, notFound);
        return std::tuple(records[1].status, records[1].value);
    };
    const DWORD own = 7;
    VLFPPolicyRecord record = {setting, 0, 0, 4, 0xFFFFFFFF00000002, 0};
    EXPECT_EQ(asked(), std::tuple(notFound, 5u));
    RegSetKeyValueW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano\VLFPApi\Policy)", setting, REG_DWORD,
                    &own, sizeof own);
    EXPECT_EQ(asked(), std::tuple(1, 7u));
    EXPECT_EQ(VLFPSetPolicySettingsEx(1, &record), S_OK);
    EXPECT_EQ(asked(), std::tuple(0, 2u));
    const std::wstring longerThanAny(20000, L'n');
    record.name = longerThanAny.c_str();
    EXPECT_TRUE(FAILED(VLFPSetPolicySettingsEx(1, &record)) && FAILED(record.status));
}

TEST(PolicyLibrary, ASecretIsKeptSealedUnderUserKindAndName)
{
    std::string sealed(4096, 'x'), out(9, 'x');
    const auto at = [](std::string& text) { return reinterpret_cast<BYTE*>(text.data()); };
    std::vector<BYTE> value;
    EXPECT_EQ(secretFromUtf8("\xFF", value), HRESULT_FROM_WIN32(ERROR_NO_UNICODE_TRANSLATION));
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

TEST(SecretClient, WantsAllFunctionsOfTheLibrary)
{
    static std::string missing;
    static const auto original = reinterpret_cast<decltype(&GetProcAddress)>(
        importedFunction(GetModuleHandleW(nullptr), "GetProcAddress"));
    const importPatch_t without(
        "GetProcAddress", +[](HMODULE library, const char* name) {
            return original(library, name == missing ? "missing" : name);
        });
    EXPECT_EQ(CSecretClient().Status(), S_OK);
    for (const char* name :
         {"VLFPDoesSecretExist", "VLFPStoreSecret", "VLFPReadSecret", "VLFPDeleteSecret"}) {
        missing = name;
        EXPECT_EQ(CSecretClient().Status(), HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)) << name;
    }
}

} // namespace
