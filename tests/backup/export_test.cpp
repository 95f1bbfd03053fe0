#include <functional>
#include <stdexcept>

#include "backup/currentuser.h"
#include "backup/storagedata.h"
#include "common/scoped.h"
#include "common/status.h"
#include "common/text.h"
#include "pluginfixture.h"
#include "quicklinks/quicklinks.h"
#include "support/patchimport.h"

namespace {

bytes backupOf()
{
    CDerNode backup;
    const uint32_t size = CStorageData::BuildBackup(backup);
    const bytes encoded = backup.Encode();
    EXPECT_EQ(encoded.size(), size);
    return encoded;
}

bytes templatesOf()
{
    CDerNode slot;
    EXPECT_EQ(CStorageData::ExportTemplates(&slot), S_OK);
    return slot.Encode();
}

const bytes noData = filePair(L"updata.vls", "");
const bytes noTemporaryData = filePair(L"updata_temp.vls", "");

class Export : public pluginTest
{};

TEST_F(Export, AWholeBackupByteForByte)
{
    m_profile.write(m_profile.personal + L"a.vlm", "AB");
    const std::string document = R"({"settings":{"current":{"open_guard_desk_qa":"Ctrl+Win+72",)"
                                 R"("show_training_prompt":true,"useGrabbingCreds":false}}})";
    const bytes expected = seq({seq({{0x30, 0x12, 0x1E, 0x0C, 0, 'a', 0,    '.',  0,   'v',
                                      0,    'l',  0,    'm',  0, 0,   0x04, 0x02, 'A', 'B'},
                                     noData,
                                     noTemporaryData}),
                                {0x30, 0},
                                {0x30, 0},
                                seq({narrow(document)})});
    const bytes backup = backupOf();
    EXPECT_EQ(backup, expected);
    EXPECT_EQ(backup.size(), 214u);
    EXPECT_EQ(bytes(backup.begin(), backup.begin() + 5), (bytes{0x30, 0x81, 0xD3, 0x30, 0x56}));
}

TEST_F(Export, DataIsPresentByTheTwoDataFiles)
{
    const std::optional<std::string> none;
    const std::optional<std::string> empty = "";
    const std::optional<std::string> content = "x";
    const struct {
        std::optional<std::string> data;
        std::optional<std::string> temporary;
        bool present;
    } cases[] = {{none, none, false}, {empty, none, false}, {content, none, true},
                 {none, empty, true}, {empty, empty, true}, {content, content, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m_profile.clear();
        m_profile.write(m_profile.personal + L"a.vlm", "templates alone don't count");
        if (c.data)
            m_profile.write(m_profile.personal + L"updata.vls", *c.data);
        if (c.temporary)
            m_profile.write(m_profile.personal + L"updata_temp.vls", *c.temporary);
        EXPECT_EQ(CStorageData::IsStorageDataPresent(), c.present);
    }
    m_profile.settings.values[L"path_localstorage_dir"].pop_back(); // the separator is added here
    EXPECT_TRUE(CStorageData::IsStorageDataPresent());
    m_profile.settings.values[L"path_localstorage_dir"] = L"";
    EXPECT_FALSE(CStorageData::IsStorageDataPresent());
}

TEST_F(Export, FilesTravelInListOrderWithTheirNamesByOwner)
{
    const std::string large(200000, 'L');
    m_profile.write(m_profile.cache + L"c.vlm", "c");
    m_profile.write(m_profile.personal + L"a.vlm", large);
    m_profile.write(m_profile.personal + L"b.vlm", "");
    m_profile.write(m_profile.personal + L"d.vlm", "locked");
    m_profile.write(m_profile.personal + L"updata.vls", "u");
    const CFileHandle lock(CreateFileW((m_profile.personal + L"d.vlm").c_str(), GENERIC_WRITE, 0,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(lock);
    EXPECT_EQ(templatesOf(),
              seq({filePair(L"alien|" + m_profile.cache + L"c.vlm", "c"), filePair(L"a.vlm", large),
                   filePair(L"b.vlm", ""), filePair(L"d.vlm", ""), filePair(L"updata.vls", "u"),
                   noTemporaryData}));
}

TEST_F(Export, WithoutAnyFileTheLaterElementsMoveForward)
{
    m_profile.settings.values[L"path_localstorage_dir"] = L"";
    m_profile.settings.values[L"path_cachestorage_dir"] = L"";
    m_profile.setCategory(L"Name", L"text");
    CDerNode slot;
    EXPECT_EQ(CStorageData::ExportTemplates(nullptr), E_POINTER);
    EXPECT_EQ(CStorageData::ExportTemplates(&slot), E_FAIL);
    EXPECT_TRUE(slot.IsEmpty());
    const bytes backup = backupOf();
    const bytes front = {0x30, 0x00, 0x30, 0x1A, 0x30, 0x18, 0x1E, 0x0A, 0, 'N'};
    ASSERT_GT(backup.size(), 13u);
    EXPECT_EQ(bytes(backup.begin() + 3, backup.begin() + 13), front);
}

TEST_F(Export, AQuickLinkTravelsWithTheFileNameOfItsManifest)
{
    m_profile.write(m_profile.personal + L"a.vlm", "");
    m_profile.write(m_profile.personal + L"dialog.exe",
                    ""); // a dialog link counts while its program is there
    const std::string manifest = utf8FromWide(m_profile.personal) + "a.vlm";
    QL quickLinks;
    quickLinks.add("Caf\xC3\xA9", "http://a.b/c", manifest, 0xFFFFFF80, "{id}", true);
    quickLinks.add("Dialog", utf8FromWide(m_profile.personal) + "dialog.exe", manifest, 3, "",
                   false);
    quickLinks.flush();
    CDerNode slot;
    EXPECT_TRUE(CStorageData::ExportQuickLinks(slot));
    EXPECT_EQ(slot.Encode(), seq({seq({wide(L"Caf\x00E9"), wide(L"http://a.b/c"), wide(L"a.vlm"),
                                       integer(0x80), wide(L"{id}"), integer(1)}),
                                  seq({wide(L"Dialog"), wide(m_profile.personal + L"dialog.exe"),
                                       wide(L"a.vlm"), integer(3), wide(L""), integer(0)})}));
}

int32_t secretAnswer = 0;
std::wstring secretUser;
const importPatch_t* patched = nullptr;
const importPatch_t* patchedExport = nullptr;
DWORD failure = 0;

int32_t WINAPI answerSecret(const wchar_t* user, uint32_t kind, const wchar_t* name)
{
    secretUser = user;
    return kind == 3 && std::wstring(name) == L"KRS Protected Storage" ? secretAnswer : -1;
}

HMODULE WINAPI LoadedLibrary(LPCWSTR name)
{
    return std::wstring(name) == L"VLFPApi.dll"
               ? importOriginal<decltype(&LoadLibraryW)>(*patched)(L"kernel32.dll")
               : importOriginal<decltype(&LoadLibraryW)>(*patched)(name);
}

HMODULE WINAPI MissingLibrary(LPCWSTR)
{
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

FARPROC WINAPI FoundExport(HMODULE module, LPCSTR name)
{
    if (std::string(name) == "VLFPDoesSecretExist")
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&answerSecret));
    return importOriginal<decltype(&GetProcAddress)>(*patchedExport)(module, name);
}

FARPROC WINAPI MissingExport(HMODULE, LPCSTR)
{
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
}

const HMODULE self = GetModuleHandleW(nullptr);

class SecretLibrary
{
public:
    SecretLibrary(bool loads, bool exports)
        : m_load(self, "LoadLibraryW",
                 reinterpret_cast<void*>(loads ? &LoadedLibrary : &MissingLibrary)),
          m_export(self, "GetProcAddress",
                   reinterpret_cast<void*>(exports ? &FoundExport : &MissingExport))
    {
        EXPECT_TRUE(m_load.found() && m_export.found());
        patched = &m_load;
        patchedExport = &m_export;
    }

private:
    importPatch_t m_load;
    importPatch_t m_export;
};

TEST_F(Export, TheOutputsAreFilledBySecretAndData)
{
    const struct {
        bool loads;
        bool exports;
        int32_t answer;
        const wchar_t* outside; // the setting intelauthenticate
        bool data;
        bool namesFilled;
        bool dataFilled;
        const wchar_t* message;
    } cases[] = {
        {true, true, 0, L"0", false, false, false, nullptr},
        {true, true, 2, L"0", false, false, false, nullptr},
        {true, true, 1, L"0", false, true, true, nullptr},
        {true, true, 0, L"-1", true, false, true, nullptr},
        {true, true, 1, L"0", true, true, true, nullptr},
        {true, false, 0, L"1", false, true, true, nullptr}, // not asked
        {true, false, 1, L"0", true, false, false, L"E -2147024769 GetStorageData[com]"},
        {false, true, 1, L"1", true, false, false, L"E -2147024770 GetStorageData[com]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m_profile.clear();
        m_profile.write(m_profile.personal + L"a.vlm", "AB");
        if (c.data)
            m_profile.write(m_profile.personal + L"updata_temp.vls", "");
        m_profile.settings.values[L"intelauthenticate"] = c.outside;
        secretAnswer = c.answer;
        const bytes expected = backupOf();
        ownedVariant_t names;
        ownedVariant_t data;
        names.vt = data.vt = VT_I4;
        names.lVal = data.lVal = 5;
        m_trace.messages();
        const SecretLibrary library(c.loads, c.exports);
        EXPECT_EQ(m_plugin->GetStorageData(&names, &data), S_OK);
        EXPECT_TRUE(!c.message || traced(m_trace.messages(), c.message));
        ASSERT_EQ(names.vt, c.namesFilled ? 0x2008 : VT_I4);
        ASSERT_EQ(data.vt, c.dataFilled ? 0x2011 : VT_I4);
        if (c.dataFilled) {
            EXPECT_EQ(bytesOf(data), expected);
            EXPECT_EQ(data.parray->rgsabound[0].lLbound, 0);
            EXPECT_EQ(data.parray->cLocks, 0u);
        }
        if (c.namesFilled) {
            LONG index = 0;
            BSTR name = nullptr;
            EXPECT_EQ(names.parray->rgsabound[0].cElements, 1u);
            EXPECT_EQ(SafeArrayGetElement(names.parray, &index, &name), S_OK);
            EXPECT_STREQ(name, L"KRS Protected Storage");
            SysFreeString(name);
        }
    }
    EXPECT_EQ(m_plugin->GetStorageData(nullptr, nullptr), S_OK);
}

HANDLE WINAPI RaisingOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD how, DWORD flags, HANDLE model)
{
    if (std::wstring(path).ends_with(L"updata_temp.vls"))
        throw std::runtime_error("raised");
    return importOriginal<decltype(&CreateFileW)>(*patched)(path, access, share, security, how,
                                                            flags, model);
}

TEST_F(Export, AFailureInsideTheBackupLeavesTheNamesFilledAlone)
{
    secretAnswer = 1;
    const SecretLibrary library(true, true);
    const importPatch_t open(self, "CreateFileW", reinterpret_cast<void*>(&RaisingOpen));
    ASSERT_TRUE(open.found());
    patched = &open;
    ownedVariant_t names;
    ownedVariant_t data;
    m_trace.messages();
    const importPatch_t load(self, "LoadLibraryW", reinterpret_cast<void*>(+[](LPCWSTR) {
                                 return GetModuleHandleW(L"kernel32.dll");
                             }));
    EXPECT_EQ(m_plugin3->GetStorageData(&names, &data), S_OK);
    EXPECT_EQ(names.vt, 0x2008);
    EXPECT_EQ(data.vt, VT_EMPTY);
    EXPECT_TRUE(traced(m_trace.messages(), L"E 0 GetStorageData[std]raised"));
}

BOOL WINAPI FailingImpersonate(SECURITY_IMPERSONATION_LEVEL)
{
    SetLastError(failure);
    return FALSE;
}

BOOL WINAPI FailingInformation(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID, DWORD, PDWORD size)
{
    *size = 0;
    SetLastError(failure);
    return FALSE;
}

TEST_F(Export, AnUnknownUserEndsTheBackupWithNothingFilled)
{
    const struct {
        const char* function;
        void* replacement;
        DWORD error;
        const wchar_t* message;
    } cases[] = {
        {"ImpersonateSelf", reinterpret_cast<void*>(&FailingImpersonate), ERROR_ACCESS_DENIED,
         L"E -2147024891 GetStorageData[com]"},
        {"GetTokenInformation", reinterpret_cast<void*>(&FailingInformation), ERROR_INVALID_HANDLE,
         L"E -2147024890 GetStorageData[com]"},
        // No size, no identifier and no error either.
        {"GetTokenInformation", reinterpret_cast<void*>(&FailingInformation), ERROR_SUCCESS,
         L"E -2147024809 GetStorageData[com]"},
        {"IsValidSid", reinterpret_cast<void*>(+[](PSID) -> BOOL { return FALSE; }), ERROR_SUCCESS,
         L"E -2147024809 GetStorageData[com]"},
    };
    m_profile.settings.values[L"intelauthenticate"] = L"1"; // the user counts all the same
    m_profile.write(m_profile.personal + L"updata.vls", "data");
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        failure = c.error;
        ownedVariant_t names;
        ownedVariant_t data;
        m_trace.messages();
        const importPatch_t patch(self, c.function, c.replacement);
        ASSERT_TRUE(patch.found());
        EXPECT_EQ(m_plugin->GetStorageData(&names, &data), S_OK);
        EXPECT_EQ(names.vt | data.vt, VT_EMPTY);
        EXPECT_TRUE(traced(m_trace.messages(), c.message));
    }
}

TEST(CurrentUser, TheThreadKeepsTheIdentityItHad)
{
    const auto tokenOf = [] {
        CKernelHandle token;
        TOKEN_STATISTICS statistics = {};
        DWORD size = 0;
        if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.put()))
            GetTokenInformation(token.get(), TokenStatistics, &statistics, sizeof statistics,
                                &size);
        return statistics.TokenId.LowPart;
    };
    CCurrentUser process;
    EXPECT_EQ(tokenOf(), 0u); // not impersonating
    wchar_t account[257] = {};
    DWORD size = 257;
    ASSERT_TRUE(GetUserNameW(account, &size));
    EXPECT_TRUE(process.Qualified().ends_with(std::wstring(L"\\") + account))
        << utf8FromWide(process.Qualified());

    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    const DWORD before = tokenOf();
    CCurrentUser impersonated;
    EXPECT_EQ(tokenOf(), before);
    {
        const importPatch_t patch(self, "GetTokenInformation",
                                  reinterpret_cast<void*>(&FailingInformation));
        failure = ERROR_INVALID_HANDLE;
        EXPECT_THROW(CCurrentUser(), _com_error);
    }
    EXPECT_EQ(tokenOf(), before);
    RevertToSelf();
    EXPECT_EQ(impersonated.Qualified(), process.Qualified());
}

} // namespace
