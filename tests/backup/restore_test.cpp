#include "backupfixture.h"

#include "storage/paths.h"

namespace {

using namespace std::string_literals;

const bytes none = seq({});
const bytes newFile = seq({filePair(L"new.vlm", "new")});
const bytes newCategory = seq({seq({wide(L"New"), wide(L"n")})});
const bytes hiddenPrompt =
    seq({narrow(R"({"settings":{"current":{"show_training_prompt":false}}})")});

bytes record(const bytes& name, const bytes& profile, const std::vector<bytes>& more = {})
{
    std::vector<bytes> elements = {name, wide(L"t"), wide(L"new.vlm"), profile, wide(L"id")};
    elements.insert(elements.end(), more.begin(), more.end());
    return seq(elements);
}

bytes oldRecord(const bytes& name)
{
    return seq({name, narrow("t"), narrow("new.vlm"), integer(7), narrow("id")});
}

class Restore : public backupTest
{
protected:
    Restore() { makeOldState(); }

    void makeOldState()
    {
        clear();
        for (const auto& [path, content] : oldFiles)
            write(path, content);
        RegSetKeyValueW(HKEY_CURRENT_USER, key, L"Old", REG_SZ, L"o", 4);
    }
    bool hasCategory(const wchar_t* name) const
    {
        return !RegGetValueW(HKEY_CURRENT_USER, key, name, RRF_RT_REG_SZ, nullptr, nullptr,
                             nullptr);
    }

    const wchar_t* const key = LR"(SOFTWARE\Veltrano\Applications\DashBoard\QLCategories)";
    const fileMap oldFiles = {{L"personal\\old.vlm", "old"},
                              {L"personal\\updata.vls", "data"},
                              {L"personal\\kept.txt", "kept"},
                              {L"cache\\alien.vlm", "alien"},
                              {L"quicklinks.txt", "old"}};
};

TEST_F(Restore, TheCountOfElementsTellsWhatIsReadAndHow)
{
    const bytes links = seq({record(wide(L"n"), integer(7))});
    const struct {
        bytes backup;
        bool restored;
        bool categories;
        const wchar_t* prompt;
    } cases[] = {
        {none, false, false, L"1"},
        {seq({newFile}), false, false, L"1"},
        {seq({newFile, seq({oldRecord(narrow("n"))})}), true, false, L"1"},
        {seq({newFile, links, newCategory}), true, true, L"1"},
        {seq({newFile, links, newCategory, hiddenPrompt}), true, true, L"-1"},
        {seq({newFile, links, newCategory, hiddenPrompt, integer(1)}), true, true, L"1"},
    };
    const std::wstring manifest = lowerpath(m_personal) + L"new.vlm";
    const fileMap newFiles = {
        {L"personal\\kept.txt", "kept"},
        {L"personal\\new.vlm", "new"},
        {L"cache\\alien.vlm", "alien"},
        {L"quicklinks.txt", "[ShortCutRecord]\r\nManifest=" + utf8FromWide(manifest) +
                                "\r\nUrl=t\r\nName=n\r\nProfile=7\r\nManifestID=id\r\n"
                                "QLwoCred=0\r\n"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        makeOldState();
        m_trace.messages();
        EXPECT_EQ(restore(c.backup), c.restored ? S_OK : E_UNEXPECTED);
        EXPECT_EQ(files(), c.restored ? newFiles : oldFiles);
        EXPECT_EQ(hasCategory(L"Old"), !c.categories);
        EXPECT_EQ(hasCategory(L"New"), c.categories);
        EXPECT_EQ(m_settings.values[L"show_training_prompt"], c.prompt);
        EXPECT_EQ(posted(), c.restored ? postings({{0, 0}}) : postings{});
        auto messages = m_trace.messages();
        messages.resize(c.restored ? 3 : messages.size()); // the rest are the quick links' own
        const std::wstring bounds =
            L"U lBound = 0, uBound = " + std::to_wstring(c.backup.size() - 1);
        EXPECT_EQ(messages,
                  c.restored
                      ? (std::vector{bounds, L"U SAQL OK, Num BLOBs=1"s, L"U bs3: " + manifest})
                      : (std::vector{bounds, L"E -2147418113 SetStorageData[com]"s}));
    }
}

TEST_F(Restore, APairDecidesWhatIsWrittenAndWhere)
{
    const auto named = [](const std::wstring& name) { return filePair(name, "c"); };
    const struct {
        bytes pair;
        const wchar_t* file; // below the root; null for none
        std::string content;
    } cases[] = {
        {named(L"C:\\x\\y.vlm"), L"personal\\y.vlm", "c"},
        {named(L"..\\..\\evil.exe"), L"personal\\evil.exe", "c"},
        {named(L"x/y:z.vlm"), L"personal\\z.vlm", "c"},
        {named(L"alien|" + m_cache + L"..\\personal\\d.vlm"), L"personal\\d.vlm", "c"},
        {named(L"alien|" + m_cache + L"c.vlm"), L"cache\\c.vlm", "c"},
        {named(L""), nullptr, ""},
        {named(L"sub\\"), nullptr, ""},
        {named(L"alien|"), nullptr, ""},
        {named(L"ALIEN|q.vlm"), nullptr, ""}, // no mark, and no name for a file
        {named(L"alien|" + m_root + L"missing\\c.vlm"), nullptr, ""}, // folders are not made
        {seq({tlv(0x1E, {0, 'b', 0, 0, 0, 'c'}), octets("1")}), L"personal\\b", "1"},
        {seq({wide(L"a")}), L"personal\\a", ""},
        {seq({wide(L"a"), octets("")}), L"personal\\a", ""},
        {seq({wide(L"a"), integer(5)}), L"personal\\a", "\x02\x01\x05"}, // refused: stays encoded
        {seq({wide(L"a"), octets("1"), octets("2")}), L"personal\\a", "1"},
        {none, nullptr, ""},
        {octets("no pair"), nullptr, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        write(L"cache\\c.vlm", "longer");
        EXPECT_EQ(restore(seq({seq({octets("x"), c.pair}), none})), S_OK);
        fileMap expected = {{L"cache\\c.vlm", "longer"}};
        if (c.file)
            expected[c.file] = c.content;
        EXPECT_EQ(files(), expected);
    }
    m_settings.values[L"path_localstorage_dir"].pop_back(); // a text in front of the name, no more
    EXPECT_EQ(restore(seq({newFile, none})), S_OK);
    EXPECT_EQ(files()[L"personalnew.vlm"], "new");
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
        {record(wide(L"\x00E9"), integer(7), {integer(1)}), TextForm::Wide, "\xC3\xA9", 7, true},
        {oldRecord(narrow("\xC3\xA9")), TextForm::Octets, "\xC3\xA9", 7, false},
        {record(wide(L"n"), integer(0xFF)), TextForm::Wide, "n", 0xFF, false},
        {record(wide(L"n"), {0x02, 0x00}, {integer(2)}), TextForm::Wide, "n", 0, false},
        // Text in the other form stays encoded, and its bytes are the text.
        {record(narrow("ab"), integer(1)), TextForm::Wide, "\xCC\x84\xE6\x89\xA1", 1, false},
        {oldRecord(wide(L"n")), TextForm::Octets, "\x1E\x04", 7, false},
        {record(wide(L"n"), none, {none, none}), TextForm::Wide, nullptr, 0, false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m"), none}), TextForm::Wide, nullptr, 0, false},
    };
    write(L"personal\\new.vlm", "");
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        QL::removefile();
        const bytes records = seq({c.record});
        CStorageData::RestoreQuickLinks(CDerElement(records), c.form);
        const QL quickLinks;
        ASSERT_EQ(quickLinks.records.size(), c.name ? 1u : 0u);
        if (!c.name)
            continue;
        EXPECT_EQ(quickLinks.records[0].name, c.name);
        EXPECT_EQ(quickLinks.records[0].profile, c.profile);
        EXPECT_EQ(quickLinks.records[0].wocred, c.withoutCredentials);
    }
    // The folder is lower-cased with one separator, the name behind it stays as it is.
    m_settings.values[L"path_localstorage_dir"] = L"C:/Some\\Folder/";
    const bytes mixed = seq({seq({wide(L"n"), wide(L"t"), wide(L"A/M.vlm"), none, none})});
    CStorageData::RestoreQuickLinks(CDerElement(mixed), TextForm::Wide);
    EXPECT_TRUE(traced(L"U bs3: c:/some/folder/A/M.vlm"));
}

decltype(&WriteFile) originalWrite = nullptr;

BOOL WINAPI FailingWrite(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED how)
{
    const bool fails = size == 6; // those of "failed"
    return originalWrite(file, data, fails ? 3 : size, written, how) && !fails;
}

TEST_F(Restore, AFailingFileCallCostsThatFileAlone)
{
    const auto hold = [&](const wchar_t* name) {
        return CFileHandle(CreateFileW((m_personal + name).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_ALWAYS, 0, nullptr));
    };
    const CFileHandle held[] = {hold(L"held.vlm"), hold(L"old.vlm"), hold(L"updata.vls")};
    const importPatch_t patch("WriteFile", &FailingWrite);
    originalWrite = importOriginal<decltype(&WriteFile)>(patch);
    m_trace.messages();
    EXPECT_EQ(restore(seq({seq({filePair(L"old.vlm", "new"), filePair(L"bad.vlm", "failed"),
                                filePair(L"good.vlm", "g")}),
                           none})),
              S_OK);
    const auto messages = m_trace.messages();
    const std::vector<std::wstring> expected = {
        L"U Failed to delete 2 files", L"U Failed to delete " + m_personal + L"updata.vls file.",
        L"U Error writing File: " + m_personal + L"bad.vlm"};
    EXPECT_TRUE(std::search(messages.begin(), messages.end(), expected.begin(), expected.end()) !=
                messages.end());
    fileMap left = oldFiles;
    left.erase(L"quicklinks.txt");
    left.merge(fileMap{
        {L"personal\\held.vlm", ""}, {L"personal\\bad.vlm", "fai"}, {L"personal\\good.vlm", "g"}});
    EXPECT_EQ(files(), left);
    EXPECT_EQ(posted(), (postings{{0, 0}}));
}

TEST_F(Restore, WhatIsNoByteArrayTouchesNothing)
{
    const auto statusOf = [&](int told, SAFEARRAY* array) {
        VARIANT data = {};
        data.vt = static_cast<VARTYPE>(told);
        data.parray = array;
        const HRESULT status = m_plugin.SetStorageData(&data);
        SafeArrayDestroy(array);
        return status;
    };
    constexpr int dataType = VT_ARRAY | VT_UI1;
    EXPECT_EQ(statusOf(VT_ARRAY | VT_BSTR, SafeArrayCreateVector(VT_BSTR, 0, 0)), E_INVALIDARG);
    EXPECT_EQ(statusOf(dataType, SafeArrayCreateVector(VT_UI1, 0, 0)), E_UNEXPECTED);
    EXPECT_EQ(statusOf(dataType, SafeArrayCreateVector(VT_BSTR, 0, 0)), E_FAIL);
    EXPECT_EQ(statusOf(dataType, nullptr), E_FAIL);
    EXPECT_TRUE(traced(L"E 0 SetStorageDataoo"));
    EXPECT_EQ(m_plugin.SetStorageData(nullptr), E_POINTER);
    EXPECT_EQ(files(), oldFiles);
}

TEST_F(Restore, TheFlagsGoToTheAgentAsTwoWords)
{
    ATL::CComVariant data;
    byteArray(data, seq({none, none}), 5); // any lower bound
    EXPECT_EQ(m_plugin.SetStorageData2(0x00010002, &data), S_OK);
    EXPECT_TRUE(traced(L"U lBound = 5, uBound = 10"));
    EXPECT_EQ(m_plugin.SetStorageData2(0xFFFF8000, &data), S_OK);
    EXPECT_EQ(posted(), (postings{{1, 2}, {0xFFFF, 0x8000}}));
    DestroyWindow(m_agent);
    EXPECT_EQ(m_plugin.SetStorageData2(0, &data), S_OK);
    EXPECT_TRUE(traced(L"U VlAgent window NOT found!"));
    EXPECT_EQ(m_plugin.SetStorageData2(0, nullptr), E_POINTER);
    EXPECT_TRUE(traced(L"E -2147467261 SetStorageData2[com]"));
}

decltype(&SafeArrayDestroy) originalDestroy = nullptr;
HRESULT destroyed = E_PENDING;

HRESULT WINAPI SeenDestroy(SAFEARRAY* array)
{
    return destroyed = originalDestroy(array);
}

TEST_F(Restore, WhatRaisesLeavesTheEarlierElementsRestoredAndTheArrayAccessed)
{
    const bytes document = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":7}}})")});
    const bytes backup = seq({integer(1), octets("refused"), newCategory, document});
    const importPatch_t patch("SafeArrayDestroy", &SeenDestroy);
    originalDestroy = importOriginal<decltype(&SafeArrayDestroy)>(patch);
    EXPECT_EQ(restore(backup), E_UNEXPECTED);
    EXPECT_EQ(destroyed, S_OK); // the plug-in's copy is not left behind
    EXPECT_TRUE(traced(L"E 0 SetStorageData[std]Type is not convertible to string"));
    EXPECT_EQ(files(), (fileMap{{L"personal\\kept.txt", "kept"}, {L"cache\\alien.vlm", "alien"}}));
    EXPECT_TRUE(hasCategory(L"New"));
    EXPECT_EQ(posted(), postings{});
    CVLByteArray array;
    array.Add(backup);
    EXPECT_THROW(RestoreFromSafeArray(array), std::exception);
    EXPECT_EQ(array.Get()->cLocks, 2u);
    SafeArrayUnaccessData(array.Get());
}

TEST_F(Restore, ACutBackupIsRefusedBeforeAnythingIsTouched)
{
    const bytes whole =
        seq({newFile, seq({record(wide(L"n"), integer(1))}), newCategory, hiddenPrompt});
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(restore({whole.data(), whole.data() + size}), E_UNEXPECTED) << size;
    EXPECT_EQ(files(), oldFiles);
    EXPECT_EQ(restore(seq({{0x30, 0x02, 0x30, 0x10}, {0x30, 0x01, 0x30}, none})), S_OK);
    EXPECT_EQ(files().size(), 2u);
}

} // namespace
