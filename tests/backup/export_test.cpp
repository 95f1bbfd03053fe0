#include "backupfixture.h"

#include "backup/currentuser.h"
#include "common/status.h"
#include "common/text.h"
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

class Export : public backupTest
{};

TEST_F(Export, AWholeBackupByteForByte)
{
    write(m_personal + L"a.vlm", "AB");
    const bytes pair = {0x30, 0x12, 0x1E, 0x0C, 0, 'a', 0,    '.',  0,   'v',
                        0,    'l',  0,    'm',  0, 0,   0x04, 0x02, 'A', 'B'};
    const bytes backup = backupOf();
    EXPECT_EQ(backup,
              seq({seq({pair, filePair(L"updata.vls", ""), filePair(L"updata_temp.vls", "")}),
                   seq({}), seq({}),
                   seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":"Ctrl+Win+72",)"
                               R"("show_training_prompt":true,"useGrabbingCreds":false}}})")})}));
    EXPECT_EQ(backup.size(), 214u);
}

TEST_F(Export, DataIsPresentByTheTwoDataFiles)
{
    const struct {
        const char* data; // null: no file
        const char* temporary;
        bool present;
    } cases[] = {{nullptr, nullptr, false}, {"", nullptr, false}, {"x", nullptr, true},
                 {nullptr, "", true},       {"", "", true},       {"x", "x", true}};
    for (const auto& c : cases) {
        clear();
        write(m_personal + L"a.vlm", "templates alone don't count");
        if (c.data)
            write(m_personal + L"updata.vls", c.data);
        if (c.temporary)
            write(m_personal + L"updata_temp.vls", c.temporary);
        EXPECT_EQ(CStorageData::IsStorageDataPresent(), c.present) << &c - cases;
    }
    m_settings.values[L"path_localstorage_dir"].pop_back(); // the separator is added here
    EXPECT_TRUE(CStorageData::IsStorageDataPresent());
    m_settings.values[L"path_localstorage_dir"] = L"";
    EXPECT_FALSE(CStorageData::IsStorageDataPresent());
}

TEST_F(Export, FilesTravelInListOrderWithTheirNamesByOwner)
{
    const std::string large(200000, 'L');
    write(m_cache + L"c.vlm", "c");
    write(m_personal + L"a.vlm", large);
    write(m_personal + L"b.vlm", "");
    write(m_personal + L"d.vlm", "held by a writer");
    const CFileHandle writer(CreateFileW((m_personal + L"d.vlm").c_str(), GENERIC_WRITE, 0, nullptr,
                                         OPEN_EXISTING, 0, nullptr));
    CDerNode slot;
    EXPECT_EQ(CStorageData::ExportTemplates(&slot), S_OK);
    EXPECT_EQ(slot.Encode(),
              seq({filePair(L"alien|" + m_cache + L"c.vlm", "c"), filePair(L"a.vlm", large),
                   filePair(L"b.vlm", ""), filePair(L"d.vlm", ""), filePair(L"updata.vls", ""),
                   filePair(L"updata_temp.vls", "")}));
}

TEST_F(Export, WithoutAnyFileTheLaterElementsMoveForward)
{
    m_settings.values[L"path_localstorage_dir"] = m_settings.values[L"path_cachestorage_dir"] = L"";
    setCategory(L"Name", L"text");
    CDerNode slot;
    EXPECT_EQ(CStorageData::ExportTemplates(nullptr), E_POINTER);
    EXPECT_EQ(CStorageData::ExportTemplates(&slot), E_FAIL);
    EXPECT_TRUE(slot.IsEmpty());
    const bytes backup = backupOf();
    const bytes front = {0x30, 0x00, 0x30, 0x1A, 0x30, 0x18, 0x1E, 0x0A, 0, 'N'};
    EXPECT_EQ(bytes(backup.begin() + 3, backup.begin() + 13), front);
}

TEST_F(Export, AQuickLinkTravelsWithTheFileNameOfItsManifest)
{
    write(m_personal + L"a.vlm", "");
    write(m_personal + L"d.exe", ""); // a dialog link counts while its program is there
    const std::string folder = utf8FromWide(m_personal);
    QL quickLinks;
    quickLinks.add("Caf\xC3\xA9", "http://a.b/c", folder + "a.vlm", 0xFFFFFF80, "{id}", true);
    quickLinks.add("Dialog", folder + "d.exe", folder + "a.vlm", 3, "", false);
    quickLinks.flush();
    CDerNode slot;
    EXPECT_TRUE(CStorageData::ExportQuickLinks(slot));
    EXPECT_EQ(slot.Encode(), seq({seq({wide(L"Caf\x00E9"), wide(L"http://a.b/c"), wide(L"a.vlm"),
                                       integer(0x80), wide(L"{id}"), integer(1)}),
                                  seq({wide(L"Dialog"), wide(m_personal + L"d.exe"), wide(L"a.vlm"),
                                       integer(3), wide(L""), integer(0)})}));
}

// What the platform's calls answer while their imports are replaced.
int32_t secretAnswer = 0;
bool libraryLoads = true;
bool libraryExports = true;
DWORD failure = 0;

HMODULE WINAPI AnsweredLoad(LPCWSTR)
{
    SetLastError(ERROR_MOD_NOT_FOUND);
    return libraryLoads ? GetModuleHandleW(L"ole32.dll") : nullptr;
}

const importPatch_t* patchedExport = nullptr;

FARPROC WINAPI AnsweredExport(HMODULE module, LPCSTR name)
{
    const auto doesSecretExist =
        +[](const wchar_t*, uint32_t kind, const wchar_t* secret) -> int32_t {
        return kind == 3 && std::wstring(secret) == L"KRS Protected Storage" ? secretAnswer : -1;
    };
    if (std::string(name) != "VLFPDoesSecretExist")
        return importOriginal<decltype(&GetProcAddress)>(*patchedExport)(module, name);
    SetLastError(ERROR_PROC_NOT_FOUND);
    return libraryExports ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(doesSecretExist))
                          : nullptr;
}

BOOL WINAPI FailingInformation(HANDLE, TOKEN_INFORMATION_CLASS, LPVOID, DWORD, PDWORD size)
{
    *size = 0;
    SetLastError(failure);
    return FALSE;
}

const HMODULE self = GetModuleHandleW(nullptr);

TEST_F(Export, TheOutputsAreFilledBySecretAndData)
{
    const struct {
        bool loads;
        bool exports;
        int32_t answer;
        const wchar_t* outside; // the setting intelauthenticate
        bool data;
        VARTYPE names; // VT_I4: untouched
        VARTYPE bytes;
        const wchar_t* message;
    } cases[] = {
        {true, true, 0, L"0", false, VT_I4, VT_I4, nullptr},
        {true, true, 2, L"0", false, VT_I4, VT_I4, nullptr},
        {true, true, 1, L"0", false, 0x2008, 0x2011, nullptr},
        {true, true, 0, L"-1", true, VT_I4, 0x2011, nullptr},
        {true, false, 0, L"1", false, 0x2008, 0x2011, nullptr}, // not asked
        {true, false, 1, L"0", true, VT_I4, VT_I4, L"E -2147024769 GetStorageData[com]"},
        {false, true, 1, L"1", true, VT_I4, VT_I4, L"E -2147024770 GetStorageData[com]"},
    };
    const importPatch_t load(self, "LoadLibraryW", reinterpret_cast<void*>(&AnsweredLoad));
    const importPatch_t exported(self, "GetProcAddress", reinterpret_cast<void*>(&AnsweredExport));
    ASSERT_TRUE(load.found() && exported.found());
    patchedExport = &exported;
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        write(m_personal + (c.data ? L"updata.vls" : L"a.vlm"), "data");
        m_settings.values[L"intelauthenticate"] = c.outside;
        libraryLoads = c.loads;
        libraryExports = c.exports;
        secretAnswer = c.answer;
        ATL::CComVariant names;
        ATL::CComVariant data;
        names.vt = data.vt = VT_I4;
        m_trace.messages();
        EXPECT_EQ(m_plugin->GetStorageData(&names, &data), S_OK);
        EXPECT_TRUE(!c.message || traced(c.message));
        ASSERT_EQ(names.vt, c.names);
        ASSERT_EQ(data.vt, c.bytes);
        EXPECT_TRUE(data.vt == VT_I4 || (bytesOf(data) == backupOf() && data.parray->cLocks == 0));
        EXPECT_TRUE(names.vt == VT_I4 || *static_cast<BSTR*>(names.parray->pvData) ==
                                             std::wstring(L"KRS Protected Storage"));
    }
    EXPECT_EQ(m_plugin->GetStorageData(nullptr, nullptr), S_OK);

    m_settings.values[L"intelauthenticate"] = L"1"; // the user counts all the same
    libraryLoads = true;
    const importPatch_t token(self, "GetTokenInformation",
                              reinterpret_cast<void*>(&FailingInformation));
    for (const auto& [error, message] :
         {std::pair(DWORD{ERROR_INVALID_HANDLE}, L"E -2147024890 GetStorageData[com]"),
          std::pair(DWORD{ERROR_SUCCESS}, L"E -2147024809 GetStorageData[com]")}) {
        failure = error;
        ATL::CComVariant names;
        EXPECT_EQ(m_plugin3->GetStorageData(&names, nullptr), S_OK);
        EXPECT_EQ(names.vt, VT_EMPTY);
        EXPECT_TRUE(traced(message));
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
    wchar_t account[257] = {};
    DWORD size = 257;
    ASSERT_TRUE(GetUserNameW(account, &size));
    EXPECT_TRUE(CCurrentUser().Qualified().ends_with(std::wstring(L"\\") + account));
    EXPECT_EQ(tokenOf(), 0u); // not impersonating
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    const DWORD before = tokenOf();
    EXPECT_TRUE(CCurrentUser().Qualified().ends_with(std::wstring(L"\\") + account));
    {
        failure = ERROR_INVALID_HANDLE;
        const importPatch_t patch(self, "GetTokenInformation",
                                  reinterpret_cast<void*>(&FailingInformation));
        EXPECT_THROW(CCurrentUser(), _com_error);
    }
    EXPECT_EQ(tokenOf(), before);
    RevertToSelf();
}

} // namespace
