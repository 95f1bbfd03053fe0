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
        bool restored, categories;
        const wchar_t* prompt = L"0";
    } cases[] = {
        {none, false, false},
        {seq({newFile}), false, false},
        {seq({newFile, seq({oldRecord(narrow("n"))})}), true, false},
        {seq({newFile, links, newCategory}), true, true},
        {seq({newFile, links, newCategory, hiddenPrompt}), true, true, L"-1"},
        {seq({newFile, links, newCategory, hiddenPrompt, integer(1)}), true, true},
    };
    const fileMap newFiles = {
        {L"personal\\kept.txt", "kept"},
        {L"personal\\new.vlm", "new"},
        {L"cache\\alien.vlm", "alien"},
        {L"quicklinks.txt",
         "[ShortCutRecord]\r\nManifest=" + utf8FromWide(lowerpath(m_personal)) +
             "new.vlm\r\nUrl=t\r\nName=n\r\nProfile=7\r\nManifestID=id\r\nQLwoCred=0\r\n"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        makeOldState();
        EXPECT_EQ(restore(c.backup), c.restored ? S_OK : E_UNEXPECTED);
        EXPECT_EQ(files(), c.restored ? newFiles : oldFiles);
        EXPECT_EQ(hasCategory(L"Old"), !c.categories);
        EXPECT_EQ(hasCategory(L"New"), c.categories);
        EXPECT_EQ(m_settings.values[L"show_training_prompt"], c.prompt);
        EXPECT_EQ(posted(), c.restored ? postings({{0, 0}}) : postings{});
    }
}

decltype(&WriteFile) originalWrite = nullptr;

BOOL WINAPI FailingWrite(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED how)
{
    const bool fails = size == 6; // those of "failed"
    return originalWrite(file, data, fails ? 3 : size, written, how) && !fails;
}

TEST_F(Restore, EachPairIsWrittenWhereItSaysAndAFailureCostsThatFileAlone)
{
    const auto hold = [&](const wchar_t* name) {
        return CFileHandle(CreateFileW((m_personal + name).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_ALWAYS, 0, nullptr));
    };
    const CFileHandle held[] = {hold(L"held.vlm"), hold(L"old.vlm"), hold(L"updata.vls")};
    const importPatch_t patch("WriteFile", &FailingWrite);
    originalWrite = importOriginal<decltype(&WriteFile)>(patch);
    const auto named = [](const std::wstring& name) { return filePair(name, "c"); };
    const struct {
        bytes pair;
        const wchar_t* file = nullptr; // below the root; none for a pair that writes nothing
        std::string content = "c";
    } cases[] = {
        {octets("x")},
        {none},
        {named(L"")},
        {named(L"sub\\")},
        {named(L"ALIEN|q.vlm")}, // no mark, and no name for a file
        {named(L"alien|")},
        {named(L"alien|" + m_root + L"missing\\c.vlm")}, // folders are not made
        {named(L"held.vlm"), L"personal\\held.vlm", ""},
        {named(L"old.vlm"), L"personal\\old.vlm", "old"},
        {filePair(L"bad.vlm", "failed"), L"personal\\bad.vlm", "fai"},
        {named(L"C:\\x\\y.vlm"), L"personal\\y.vlm"},
        {named(L"x/y:z.vlm"), L"personal\\z.vlm"},
        {named(L"alien|" + m_cache + L"..\\personal\\d.vlm"), L"personal\\d.vlm"},
        {named(L"alien|" + m_cache + L"c.vlm"), L"cache\\c.vlm"},
        {seq({tlv(0x1E, {0, 'b', 0, 0, 0, 'c'}), octets("1")}), L"personal\\b", "1"},
        {seq({wide(L"e")}), L"personal\\e", ""},
        {seq({wide(L"f"), integer(5)}), L"personal\\f", "\x02\x01\x05"}, // refused: encoded
        {seq({wide(L"g"), octets("1"), octets("2")}), L"personal\\g", "1"},
    };
    write(L"cache\\c.vlm", "longer");
    std::vector<bytes> pairs;
    fileMap expected = {{L"personal\\updata.vls", "data"},
                        {L"personal\\kept.txt", "kept"},
                        {L"cache\\alien.vlm", "alien"}};
    for (const auto& c : cases) {
        pairs.push_back(c.pair);
        if (c.file)
            expected[c.file] = c.content;
    }
    EXPECT_EQ(restore(seq({seq(pairs), none})), S_OK);
    EXPECT_EQ(files(), expected);
    EXPECT_NE(m_trace.joined().find(L"|U Failed to delete 2 files|U Failed to delete " +
                                    m_personal + L"updata.vls file.|U Error writing File: " +
                                    m_personal + L"bad.vlm"),
              std::wstring::npos);
    m_settings.values[L"path_localstorage_dir"].pop_back(); // a text in front of the name, no more
    EXPECT_EQ(restore(seq({newFile, none})), S_OK);
    EXPECT_EQ(files()[L"personalnew.vlm"], "new");
}

TEST_F(Restore, ARecordBecomesAQuickLinkByItsForm)
{
    constexpr TextForm now = TextForm::wide, before = TextForm::octets;
    const std::tuple<bytes, TextForm, std::string> cases[] = {
        // The link's name, profile and whether without credentials; none.
        {record(wide(L"\x00E9"), integer(7), {integer(1)}), now, "\xC3\xA9 7 1"},
        {oldRecord(narrow("\xC3\xA9")), before, "\xC3\xA9 7 0"},
        {record(wide(L"n"), integer(0xFF)), now, "n 255 0"},
        {record(wide(L"n"), {0x02, 0x00}, {integer(2)}), now, "n 0 0"},
        // Text in the other form stays encoded, and its bytes are the text.
        {record(narrow("ab"), integer(1)), now, "\xCC\x84\xE6\x89\xA1 1 0"},
        {oldRecord(wide(L"n")), before, "\x1E\x04 7 0"},
        {record(wide(L"n"), none, {none, none}), now, ""},
        {seq({wide(L"n"), wide(L"t"), wide(L"m"), none}), now, ""},
    };
    write(L"personal\\new.vlm", "");
    for (const auto& [encoded, form, expected] : cases) {
        QL::removefile();
        const bytes records = seq({encoded});
        CStorageData::RestoreQuickLinks(CDerElement(records), form);
        std::string links;
        for (const auto& link : QL().records)
            links += link.name + ' ' + std::to_string(link.profile) + (link.wocred ? " 1" : " 0");
        EXPECT_EQ(links, expected);
    }
    // The folder is lower-cased with one separator, the name after it stays as it is.
    m_settings.values[L"path_localstorage_dir"] = L"C:/Some\\Folder/";
    const bytes mixed = seq({seq({wide(L"n"), wide(L"t"), wide(L"A/M.vlm"), none, none})});
    CStorageData::RestoreQuickLinks(CDerElement(mixed), TextForm::wide);
    EXPECT_TRUE(traced(L"U bs3: c:/some/folder/A/M.vlm"));
}

TEST_F(Restore, OnlyAByteArrayIsTakenWhateverItsBound)
{
    constexpr int dataType = VT_ARRAY | VT_UI1;
    for (const auto& [type, array, status] :
         {std::tuple{VT_ARRAY | VT_BSTR, SafeArrayCreateVector(VT_BSTR, 0, 0), E_INVALIDARG},
          {dataType, SafeArrayCreateVector(VT_UI1, 0, 0), E_UNEXPECTED},
          {dataType, SafeArrayCreateVector(VT_BSTR, 0, 0), E_FAIL},
          {dataType, SafeArrayCreateVector(VT_I1, 0, 0), E_FAIL},
          {dataType, nullptr, E_FAIL}}) {
        VARIANT data = {};
        data.vt = static_cast<VARTYPE>(type);
        data.parray = array;
        EXPECT_EQ(m_plugin.SetStorageData(&data), status);
        SafeArrayDestroy(array);
    }
    EXPECT_EQ(files(), oldFiles);
    ATL::CComVariant data;
    byteArray(data, seq({none, none}), 5); // any lower bound
    EXPECT_EQ(m_plugin.SetStorageData2(0xFFFF8000, &data), S_OK);
    EXPECT_TRUE(traced(L"U lBound = 5, uBound = 10"));
    EXPECT_EQ(posted(), (postings{{0xFFFF, 0x8000}})); // the flags as two words
}

TEST_F(Restore, WhatRaisesLeavesTheEarlierElementsRestoredAndNoArray)
{
    static ULONG locks = 9; // of the array's copy when it is destroyed
    const importPatch_t patch(
        "SafeArrayDestroy", +[](const SAFEARRAY* array) { return locks = array->cLocks, S_OK; });
    const bytes number = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":7}}})")});
    EXPECT_EQ(restore(seq({integer(1), octets("refused"), newCategory, number})), E_UNEXPECTED);
    EXPECT_EQ(locks, 0u);
    EXPECT_TRUE(traced(L"E 0 SetStorageData[std]Type is not convertible to string"));
    EXPECT_EQ(files(), (fileMap{{L"personal\\kept.txt", "kept"}, {L"cache\\alien.vlm", "alien"}}));
    EXPECT_TRUE(hasCategory(L"New"));
}

} // namespace
