#include "backup/currentuser.h"
#include "backupfixture.h"
#include "common/status.h"
#include "support/linkfixture.h"

namespace {

using Export = backupTest;

bytes backupOf()
{
    CDerTree backup;
    const uint32_t size = CStorageData::BuildBackup(backup);
    bytes encoded = backup.Encode();
    EXPECT_EQ(encoded.size(), size);
    return encoded;
}

TEST_F(Export, AWholeBackupByteForByte)
{
    const std::string large(200000, 'L'), folder = utf8FromWide(m_personal);
    write(L"cache\\c.vlm", "c");
    write(L"personal\\a.vlm", "AB");
    write(L"personal\\b.vlm", large);
    write(L"personal\\d.vlm", "held by a writer");
    write(L"personal\\e.exe", ""); // a dialog link counts while its program is there
    const CFileHandle writer(CreateFileW((m_personal + L"d.vlm").c_str(), GENERIC_WRITE, 0, nullptr,
                                         OPEN_EXISTING, 0, nullptr));
    QL quickLinks;
    quickLinks.add("Caf\xC3\xA9", "http://a.b/c", folder + "a.vlm", 0xFFFFFF80, "{id}", true);
    quickLinks.add("Dialog", folder + "e.exe", folder + "a.vlm", 3, "", false);
    quickLinks.flush();
    const bytes pair = {0x30, 0x12, 0x1E, 0x0C, 0, 'a', 0,    '.',  0,   'v',
                        0,    'l',  0,    'm',  0, 0,   0x04, 0x02, 'A', 'B'};
    const bytes templates = seq({filePair(L"alien|" + m_cache + L"c.vlm", "c"), pair,
                                 filePair(L"b.vlm", large), filePair(L"d.vlm", ""),
                                 filePair(L"updata.vls", ""), filePair(L"updata_temp.vls", "")});
    const bytes links = seq({seq({wide(L"Caf\x00E9"), wide(L"http://a.b/c"), wide(L"a.vlm"),
                                  integer(0x80), wide(L"{id}"), integer(1)}),
                             seq({wide(L"Dialog"), wide(m_personal + L"e.exe"), wide(L"a.vlm"),
                                  integer(3), wide(L""), integer(0)})});
    const std::string list = "a\r\xE9\xC3\xA9\xFF\x7F\"\x01"; // not all of it UTF-8
    write(L"list.txt", list + '\0' + "beyond");
    m_settings.values[L"path_dontpromptlist_filename"] = m_root + L"list.txt";
    const bytes settings = // the prompt by its default
        seq({narrow("{\"settings\":{\"current\":{\"open_guard_desk_qa\":\"Ctrl+Win+72\","
                    "\"path_dontpromptlist_filename\":\"a\\r\xE9\xC3\xA9\xFF\x7F\\\"\\u0001\","
                    "\"show_training_prompt\":true,\"useGrabbingCreds\":false}}}")});
    EXPECT_EQ(backupOf(), seq({templates, links, seq({}), settings}));
    // Without any file the later elements move forward.
    m_settings.values[L"path_localstorage_dir"] = m_settings.values[L"path_cachestorage_dir"] = L"";
    EXPECT_EQ(backupOf(), seq({links, seq({}), settings}));
}

DWORD exportError = 0;
int32_t libraryAnswer = 0;

int32_t WINAPI AnsweredQuestion(const wchar_t* user, uint32_t kind, const wchar_t* secret)
{
    EXPECT_EQ(user, CCurrentUser().Qualified());
    EXPECT_STREQ(secret, L"KRS Protected Storage");
    return kind == 3 ? libraryAnswer : -1;
}

void* WINAPI AnsweredExport(HMODULE, const char* name)
{
    const bool isThere = !exportError && name == std::string("VLFPDoesSecretExist");
    SetLastError(exportError);
    return isThere ? reinterpret_cast<void*>(&AnsweredQuestion) : nullptr;
}

TEST_F(Export, TheOutputsAreFilledBySecretAndData)
{
    constexpr VARTYPE untouched = VT_I4, secrets = VT_ARRAY | VT_BSTR, octetArray = 0x2011;
    // The error or the answer of the library, the setting intelauthenticate and the files.
    using files_t = std::vector<std::pair<const wchar_t*, const char*>>;
    const std::tuple<DWORD, int32_t, const wchar_t*, files_t, VARTYPE, VARTYPE> cases[] = {
        {0, 0, L"0", {{L"a.vlm", "not alone"}, {L"updata.vls", ""}}, untouched, untouched},
        {0, 2, L"0", {{L"updata_temp.vls", ""}}, untouched, octetArray}, // which needs no content
        {0, 0, L"-1", {{L"updata.vls", "x"}}, untouched, octetArray},
        {0, 1, L"0", {}, secrets, octetArray},
        {ERROR_PROC_NOT_FOUND, 0, L"1", {}, secrets, octetArray}, // not asked
        {ERROR_PROC_NOT_FOUND, 1, L"0", {{L"updata.vls", "x"}}, untouched, untouched},
    };
    const importPatch_t patch("GetProcAddress", &AnsweredExport);
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        const auto& [error, answer, outside, files, namesType, bytesType] = row;
        clear();
        for (const auto& [name, content] : files)
            write(std::wstring(L"personal\\") + name, content);
        m_settings.values[L"path_localstorage_dir"].pop_back(); // the separator is added
        m_settings.values[L"intelauthenticate"] = outside;
        exportError = error;
        libraryAnswer = answer;
        ATL::CComVariant names, data;
        names.vt = data.vt = untouched;
        EXPECT_EQ(m_plugin.GetStorageData(&names, &data), S_OK);
        EXPECT_EQ(traced(L"E -2147024769 GetStorageData[com]"), error && bytesType == untouched);
        ASSERT_EQ(names.vt, namesType);
        ASSERT_EQ(data.vt, bytesType);
        EXPECT_TRUE(data.vt == VT_I4 || (bytesOf(data) == backupOf() && data.parray->cLocks == 0));
        EXPECT_TRUE(names.vt == VT_I4 || *static_cast<BSTR*>(names.parray->pvData) ==
                                             std::wstring(L"KRS Protected Storage"));
    }
    m_settings.values[L"intelauthenticate"] = L"1"; // the secret counts, but only of a known user
    VARIANT held = {};
    held.vt = octetArray;
    SAFEARRAY* const locked = held.parray = SafeArrayCreateVector(VT_UI1, 0, 1);
    SafeArrayLock(locked); // can't be freed, and so gives way to nothing
    EXPECT_EQ(m_plugin.GetStorageData(nullptr, &held), S_OK);
    EXPECT_EQ(held.parray, locked);
    SafeArrayUnlock(locked);
    SafeArrayDestroy(locked);
    const importPatch_t token("GetTokenInformation", failing);
    failingError = ERROR_INVALID_HANDLE;
    EXPECT_EQ(m_plugin.GetStorageData(nullptr, nullptr), S_OK);
    EXPECT_TRUE(traced(L"E -2147024890 GetStorageData[com]"));
}

TEST(CurrentUser, TheThreadKeepsTheIdentityItHad)
{
    for (const bool impersonates : {false, true}) {
        ASSERT_TRUE(!impersonates || ImpersonateSelf(SecurityImpersonation));
        CCurrentUser user;
        EXPECT_TRUE(user.Qualified().ends_with(L'\\' + user.Account()));
        EXPECT_EQ(user.Account(), _wgetenv(L"USERNAME"));
        CKernelHandle token;
        EXPECT_EQ(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.put()),
                  impersonates);
    }
    RevertToSelf();
}

} // namespace
