#include <cstring>
#include <functional>

#include "atl/exception.h"
#include "backup/restore.h"
#include "backup/storagedata.h"
#include "common/scoped.h"
#include "common/status.h"
#include "common/text.h"
#include "pluginfixture.h"
#include "quicklinks/quicklinks.h"
#include "support/patchimport.h"

namespace {

using postings = agentWindow_t::postings;

const bytes noFiles = seq({});
const bytes hiddenPrompt =
    seq({narrow(R"({"settings":{"current":{"show_training_prompt":false}}})")});
const bytes newCategory = seq({seq({wide(L"New"), wide(L"n")})});

bytes link(const std::wstring& name)
{
    return seq(
        {wide(name), wide(L"http://a.b/c"), wide(L"new.vlm"), integer(7), wide(L"id"), integer(1)});
}

bytes oldLink(const std::string& name)
{
    return seq({narrow(name), narrow("http://a.b/c"), narrow("new.vlm"), integer(7), narrow("id")});
}

std::vector<std::string> linkNames()
{
    std::vector<std::string> names;
    for (const QLRecord& record : QL().records)
        names.push_back(record.name);
    return names;
}

class Restore : public pluginTest
{
protected:
    void SetUp() override
    {
        pluginTest::SetUp();
        makeOldState();
    }

    void makeOldState() const
    {
        m_profile.clear();
        m_profile.write(m_profile.personal + L"old.vlm", "old");
        m_profile.write(m_profile.personal + L"updata.vls", "data");
        m_profile.write(m_profile.personal + L"kept.txt", "kept");
        m_profile.write(m_profile.cache + L"alien.vlm", "alien");
        m_profile.setCategory(L"Old", L"o");
        QL quickLinks;
        quickLinks.add("Old link", "http://o.p/q", utf8FromWide(m_profile.personal) + "old.vlm", 1,
                       "", false);
        quickLinks.flush();
    }

    void expectOldState() const
    {
        EXPECT_EQ(m_profile.files(m_profile.personal), oldFiles);
        EXPECT_EQ(linkNames(), std::vector<std::string>{"Old link"});
        EXPECT_EQ(m_profile.categories(), (profile_t::categoryMap{{L"Old", L"o"}}));
        EXPECT_EQ(m_profile.setting(L"show_training_prompt"), L"1");
    }

    const profile_t::fileMap oldFiles = {
        {L"old.vlm", "old"}, {L"updata.vls", "data"}, {L"kept.txt", "kept"}};
};

TEST_F(Restore, TheCountOfElementsTellsWhatIsReadAndHow)
{
    const bytes files = seq({filePair(L"new.vlm", "new")});
    const bytes links = seq({link(L"New link")});
    const bytes oldLinks = seq({oldLink("New link")});
    const profile_t::categoryMap newOnes = {{L"New", L"n"}};
    const profile_t::categoryMap oldOnes = {{L"Old", L"o"}};
    const struct {
        bytes backup;
        bool restored;
        profile_t::categoryMap categories;
        const wchar_t* prompt;
    } cases[] = {
        {seq({}), false, oldOnes, L"1"},
        {seq({files}), false, oldOnes, L"1"},
        {seq({files, oldLinks}), true, oldOnes, L"1"},
        {seq({files, links, newCategory}), true, newOnes, L"1"},
        {seq({files, links, newCategory, hiddenPrompt}), true, newOnes, L"-1"},
        {seq({files, links, newCategory, hiddenPrompt, integer(1)}), true, newOnes, L"1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        makeOldState();
        m_profile.settings.values[L"show_training_prompt"] = L"1";
        EXPECT_EQ(restore(c.backup), c.restored ? S_OK : E_UNEXPECTED);
        EXPECT_EQ(m_profile.categories(), c.categories);
        EXPECT_EQ(m_profile.setting(L"show_training_prompt"), c.prompt);
        EXPECT_EQ(m_agent.posted(), c.restored ? postings({{0, 0}}) : postings{});
        if (!c.restored) {
            expectOldState();
            continue;
        }
        EXPECT_EQ(m_profile.files(m_profile.personal),
                  (profile_t::fileMap{{L"kept.txt", "kept"}, {L"new.vlm", "new"}}));
        EXPECT_EQ(m_profile.files(m_profile.cache), (profile_t::fileMap{{L"alien.vlm", "alien"}}));
        EXPECT_EQ(linkNames(), std::vector<std::string>{"New link"});
    }
}

TEST_F(Restore, ARefusedElementLeavesTheStepsBehindItRunning)
{
    EXPECT_EQ(restore(seq({integer(1), octets("x"), newCategory, hiddenPrompt})), S_OK);
    EXPECT_EQ(m_profile.files(m_profile.personal), (profile_t::fileMap{{L"kept.txt", "kept"}}));
    EXPECT_EQ(linkNames(), std::vector<std::string>{});
    EXPECT_EQ(m_profile.categories(), (profile_t::categoryMap{{L"New", L"n"}}));
    EXPECT_EQ(m_profile.setting(L"show_training_prompt"), L"-1");
    EXPECT_TRUE(traced(m_trace.messages(), L"U SAQL OK, Num BLOBs=0"));
}

TEST_F(Restore, AStoredNameDecidesTheTarget)
{
    const std::wstring& root = m_profile.root;
    const struct {
        std::wstring name;
        std::wstring target; // below the root; empty for none
    } cases[] = {
        {L"a.vlm", L"personal\\a.vlm"},
        {L"C:\\x\\y.vlm", L"personal\\y.vlm"},
        {L"..\\..\\evil.vlm", L"personal\\evil.vlm"},
        {L"x/y:z.vlm", L"personal\\z.vlm"},
        {L"any.exe", L"personal\\any.exe"},
        {std::wstring(L"b.vlm\0c", 7), L"personal\\b.vlm"},
        {L"", L""},
        {L"sub\\", L""},
        {L"..", L""},
        {L"a?.vlm", L""},
        {L"alien|", L""},
        {L"ALIEN|q.vlm", L""},
        {L"alien|" + root + L"cache\\c.vlm", L"cache\\c.vlm"},
        {L"alien|" + root + L"cache\\..\\personal\\d.vlm", L"personal\\d.vlm"},
        {L"alien|" + root + L"missing\\c.vlm", L""},
        {std::wstring(40000, L'n'), L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8FromWide(c.name.substr(0, 60)));
        m_profile.clear();
        EXPECT_EQ(restore(seq({seq({filePair(c.name, "content")}), noFiles, noFiles})), S_OK);
        profile_t::fileMap found;
        for (const wchar_t* folder : {L"personal\\", L"cache\\"}) {
            for (const auto& [name, content] : m_profile.files(root + folder))
                found[folder + name] = content;
        }
        EXPECT_EQ(found, c.target.empty() ? profile_t::fileMap{}
                                          : profile_t::fileMap({{c.target, "content"}}));
        EXPECT_EQ(GetFileAttributesW((root + L"missing").c_str()), INVALID_FILE_ATTRIBUTES);
    }
}

TEST_F(Restore, TheFolderIsATextInFrontOfTheName)
{
    m_profile.settings.values[L"path_localstorage_dir"] = m_profile.root + L"personal";
    EXPECT_EQ(restore(seq({seq({filePair(L"a.vlm", "a")}), noFiles, noFiles})), S_OK);
    EXPECT_EQ(m_profile.files(m_profile.personal), oldFiles); // the masks missed the folder
    const std::wstring beside = m_profile.root + L"personala.vlm";
    EXPECT_TRUE(DeleteFileW(beside.c_str()));
}

TEST_F(Restore, APairGivesTheBytesThatItsSecondElementHolds)
{
    const bytes pairs =
        seq({seq({wide(L"none.vlm")}), seq({wide(L"empty.vlm"), octets("")}),
             seq({wide(L"integer.vlm"), integer(5)}), // refused: stays encoded
             seq({wide(L"more.vlm"), octets("1"), octets("2")}), seq({}), octets("no pair"),
             seq({wide(L"twice.vlm"), octets("first and longer")}),
             seq({wide(L"TWICE.vlm"), octets("second")})});
    EXPECT_EQ(restore(seq({pairs, noFiles, noFiles})), S_OK);
    EXPECT_EQ(m_profile.files(m_profile.personal),
              (profile_t::fileMap{{L"kept.txt", "kept"},
                                  {L"none.vlm", ""},
                                  {L"empty.vlm", ""},
                                  {L"integer.vlm", "\x02\x01\x05"},
                                  {L"more.vlm", "1"},
                                  {L"twice.vlm", "second"}}));
}

TEST_F(Restore, ARecordBecomesAQuickLinkByItsForm)
{
    const struct {
        bytes record;
        TextForm form;
        const char* name; // null: no quick link
        uint32_t profile;
        bool withoutCredentials;
    } cases[] = {
        {link(L"\x00E9"), TextForm::Wide, "\xC3\xA9", 7, true},
        {oldLink("\xC3\xA9"), TextForm::Octets, "\xC3\xA9", 7, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), integer(0xFF), wide(L"")}), TextForm::Wide,
         "n", 0xFF, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), {0x02, 0x00}, wide(L""), integer(2)}),
         TextForm::Wide, "n", 0, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), octets("\1"), wide(L""), octets("\1")}),
         TextForm::Wide, "n", 0, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), {0x02, 0x05, 1, 0, 0, 0, 0}, wide(L"")}),
         TextForm::Wide, "n", 0, false},
        // Text in the other form stays encoded, and its bytes are the text.
        {seq({narrow("ab"), wide(L"t"), wide(L"m.vlm"), integer(1), wide(L"")}), TextForm::Wide,
         "\xCC\x84\xE6\x89\xA1", 1, false},
        {seq({wide(L"n"), narrow("t"), narrow("m.vlm"), integer(1), narrow("")}), TextForm::Octets,
         "\x1E\x04", 1, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), integer(1)}), TextForm::Wide, nullptr, 0,
         false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), integer(1), wide(L""), integer(1),
              integer(1)}),
         TextForm::Wide, nullptr, 0, false},
        {octets("no record"), TextForm::Wide, nullptr, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        m_profile.clear();
        m_profile.write(m_profile.personal + L"m.vlm", "");
        m_profile.write(m_profile.personal + L"new.vlm", "");
        const bytes records = seq(
            {c.record, seq({wide(L"last"), wide(L"t"), wide(L"l.vlm"), integer(1), wide(L"")})});
        CStorageData::RestoreQuickLinks(CDerElement(records), c.form);
        QL quickLinks;
        if (!c.name) {
            EXPECT_EQ(quickLinks.records.size(), 0u);
            continue;
        }
        ASSERT_EQ(quickLinks.records.size(), 1u);
        EXPECT_EQ(quickLinks.records[0].name, c.name);
        EXPECT_EQ(quickLinks.records[0].profile, c.profile);
        EXPECT_EQ(quickLinks.records[0].wocred, c.withoutCredentials);
    }
}

TEST_F(Restore, AManifestIsTheLowerCasedFolderWithTheNameAsItIs)
{
    const bytes records =
        seq({seq({wide(L"n"), wide(L"t"), wide(L"Mixed/Case.vlm"), integer(1), wide(L"")})});
    m_profile.settings.values[L"path_localstorage_dir"] = L"C:/Some\\Folder/";
    m_trace.messages();
    CStorageData::RestoreQuickLinks(CDerElement(records), TextForm::Wide);
    EXPECT_TRUE(traced(m_trace.messages(), L"U bs3: c:/some/folder/Mixed/Case.vlm"));
    m_profile.settings.values[L"path_localstorage_dir"] = L"";
    CStorageData::RestoreQuickLinks(CDerElement(records), TextForm::Wide);
    EXPECT_EQ(m_trace.messages(), std::vector<std::wstring>{L"U SAQL OK, Num BLOBs=1"});
}

TEST_F(Restore, AMissingElementTouchesNothing)
{
    m_trace.messages();
    CStorageData::RestoreTemplates(CDerElement());
    CStorageData::RestoreQuickLinks(CDerElement(), TextForm::Wide);
    EXPECT_EQ(m_trace.messages(), std::vector<std::wstring>{L"U Invalid BLOB pointer."});
    expectOldState();
}

std::wstring failingSuffix;
DWORD failure = 0;
const importPatch_t* failing = nullptr;

bool fails(const std::wstring& path)
{
    if (!path.ends_with(failingSuffix))
        return false;
    SetLastError(failure);
    return true;
}

BOOL WINAPI FailingDelete(LPCWSTR path)
{
    return !fails(path) && importOriginal<decltype(&DeleteFileW)>(*failing)(path);
}

HANDLE WINAPI FailingCreate(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                            DWORD how, DWORD flags, HANDLE model)
{
    if ((access & GENERIC_WRITE) != 0 && fails(path))
        return INVALID_HANDLE_VALUE;
    return importOriginal<decltype(&CreateFileW)>(*failing)(path, access, share, security, how,
                                                            flags, model);
}

BOOL WINAPI FailingWrite(HANDLE file, LPCVOID data, DWORD size, LPDWORD written,
                         LPOVERLAPPED overlapped)
{
    const auto write = importOriginal<decltype(&WriteFile)>(*failing);
    if (size == 6 && std::memcmp(data, "failed", 6) == 0) {
        write(file, data, 3, written, overlapped);
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    }
    return write(file, data, size, written, overlapped);
}

TEST_F(Restore, AFailingFileCallCostsThatFileAlone)
{
    const std::wstring& personal = m_profile.personal;
    const bytes backup = seq({seq({filePair(L"old.vlm", "new"), filePair(L"bad.vlm", "failed"),
                                   filePair(L"good.vlm", "good")}),
                              noFiles, noFiles});
    const struct {
        const char* function;
        void* replacement;
        const wchar_t* suffix;
        std::vector<std::wstring> messages;
        profile_t::fileMap files;
    } cases[] = {
        {"DeleteFileW",
         reinterpret_cast<void*>(&FailingDelete),
         L".vlm",
         {L"U Failed to delete 2 files"},
         {{L"old.vlm", "new"}, {L"more.vlm", "m"}, {L"bad.vlm", "failed"}, {L"good.vlm", "good"}}},
        {"DeleteFileW",
         reinterpret_cast<void*>(&FailingDelete),
         L".vls",
         {L"U Failed to delete " + personal + L"updata.vls file.",
          L"U Failed to delete " + personal + L"updata_temp.vls file."},
         {{L"old.vlm", "new"},
          {L"updata.vls", "data"},
          {L"updata_temp.vls", "t"},
          {L"bad.vlm", "failed"},
          {L"good.vlm", "good"}}},
        {"CreateFileW",
         reinterpret_cast<void*>(&FailingCreate),
         L"bad.vlm",
         {},
         {{L"old.vlm", "new"}, {L"good.vlm", "good"}}},
        {"WriteFile",
         reinterpret_cast<void*>(&FailingWrite),
         L"",
         {L"U Error writing File: " + personal + L"bad.vlm"},
         {{L"old.vlm", "new"}, {L"bad.vlm", "fai"}, {L"good.vlm", "good"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        makeOldState();
        m_profile.write(personal + L"more.vlm", "m");
        m_profile.write(personal + L"updata_temp.vls", "t");
        m_trace.messages();
        failingSuffix = c.suffix;
        failure = ERROR_ACCESS_DENIED;
        {
            const importPatch_t patch(GetModuleHandleW(nullptr), c.function, c.replacement);
            ASSERT_TRUE(patch.found());
            failing = &patch;
            EXPECT_EQ(restore(backup), S_OK);
        }
        std::vector<std::wstring> messages;
        for (const std::wstring& message : m_trace.messages()) {
            if (message.find(L"Failed to") != std::wstring::npos ||
                message.find(L"Error") != std::wstring::npos || message[0] == L'E')
                messages.push_back(message);
        }
        EXPECT_EQ(messages, c.messages);
        auto files = m_profile.files(personal);
        files.erase(L"kept.txt");
        EXPECT_EQ(files, c.files);
        EXPECT_EQ(m_agent.posted().size(), 1u);
    }
}

TEST_F(Restore, AnArgumentThatIsNoByteArrayTouchesNothing)
{
    const struct {
        const char* what;
        HRESULT status;
        const wchar_t* message;
        std::function<void(VARIANT&)> make;
    } cases[] = {
        {"array of texts", E_INVALIDARG, L"E -2147024809 SetStorageData[com]",
         [](VARIANT& v) {
             byteArray(v, {});
             SafeArrayDestroy(v.parray);
             v.vt = VT_ARRAY | VT_BSTR;
             v.parray = SafeArrayCreateVector(VT_BSTR, 0, 1);
         }},
        {"empty variant", E_INVALIDARG, L"E -2147024809 SetStorageData[com]", [](VARIANT&) {}},
        {"no array", E_FAIL, L"E 0 SetStorageDataoo", [](VARIANT& v) { v.vt = VT_ARRAY | VT_UI1; }},
        {"empty array", E_UNEXPECTED, L"E -2147418113 SetStorageData[com]",
         [](VARIANT& v) { byteArray(v, {}); }},
        {"two dimensions, one of them empty", E_UNEXPECTED, L"E -2147418113 SetStorageData[com]",
         [](VARIANT& v) {
             SAFEARRAYBOUND bounds[] = {{4096, 0}, {0, 0}};
             v.vt = VT_ARRAY | VT_UI1;
             v.parray = SafeArrayCreate(VT_UI1, 2, bounds);
         }},
    };
    EXPECT_EQ(m_plugin->SetStorageData(nullptr), E_POINTER);
    EXPECT_TRUE(traced(m_trace.messages(), L"E -2147467261 SetStorageData[com]"));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ownedVariant_t data;
        c.make(data);
        EXPECT_EQ(m_plugin->SetStorageData(&data), c.status);
        EXPECT_TRUE(traced(m_trace.messages(), c.message));
    }
    ownedVariant_t disguised;
    disguised.vt = VT_ARRAY | VT_UI1;
    disguised.parray = SafeArrayCreateVector(VT_BSTR, 0, 1);
    EXPECT_EQ(m_plugin->SetStorageData(&disguised), E_FAIL);
    disguised.vt = VT_ARRAY | VT_BSTR;
    expectOldState();
    EXPECT_EQ(m_agent.posted(), postings{});
}

TEST_F(Restore, TheFlagsGoToTheAgentAsTwoWords)
{
    ownedVariant_t data;
    byteArray(data, seq({noFiles, noFiles}), 5); // any lower bound
    EXPECT_EQ(m_plugin->SetStorageData2(0x00010002, &data), S_OK);
    EXPECT_EQ(m_plugin->SetStorageData2(0xFFFF8000, &data), S_OK);
    EXPECT_EQ(m_agent.posted(), (postings{{1, 2}, {0xFFFF, 0x8000}}));
    EXPECT_TRUE(traced(m_trace.messages(), L"U lBound = 5, uBound = 10"));
    EXPECT_EQ(m_plugin->SetStorageData2(1, nullptr), E_POINTER);
    EXPECT_TRUE(traced(m_trace.messages(), L"E -2147467261 SetStorageData2[com]"));
}

TEST_F(Restore, ADocumentThatRaisesLeavesTheEarlierElementsRestored)
{
    const bytes document = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":7}}})")});
    EXPECT_EQ(restore(seq({noFiles, noFiles, newCategory, document})), E_UNEXPECTED);
    EXPECT_TRUE(
        traced(m_trace.messages(), L"E 0 SetStorageData[std]Type is not convertible to string"));
    EXPECT_EQ(m_profile.categories(), (profile_t::categoryMap{{L"New", L"n"}}));
    EXPECT_EQ(m_agent.posted(), postings{});
}

TEST_F(Restore, TheArrayStaysAccessedWhenTheRestoreRaises)
{
    const struct {
        bytes backup;
        USHORT locks;
    } cases[] = {{seq({noFiles, noFiles}), 0}, {seq({noFiles}), 1}};
    for (const auto& c : cases) {
        ownedVariant_t data;
        byteArray(data, c.backup);
        try {
            RestoreFromSafeArray(data.parray);
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), E_UNEXPECTED);
        }
        EXPECT_EQ(data.parray->cLocks, c.locks);
        data.parray->cLocks = 0;
    }
}

} // namespace
