#include "backupfixture.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "common/text.h"
#include "quicklinks/quicklinks.h"
#include "support/patchimport.h"

namespace {

using postings = std::vector<std::pair<WPARAM, LPARAM>>;

const bytes none = seq({});
const bytes newFile = seq({filePair(L"new.vlm", "new")});
const bytes newCategory = seq({seq({wide(L"New"), wide(L"n")})});
const bytes hiddenPrompt =
    seq({narrow(R"({"settings":{"current":{"show_training_prompt":false}}})")});

bytes record(const bytes& name, const bytes& profile, const std::vector<bytes>& more = {})
{
    std::vector<bytes> elements = {name, wide(L"t"), wide(L"m.vlm"), profile, wide(L"id")};
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
        write(m_personal + L"old.vlm", "old");
        write(m_personal + L"updata.vls", "data");
        write(m_personal + L"kept.txt", "kept");
        write(m_cache + L"alien.vlm", "alien");
        write(m_quickLinks, "old");
        setCategory(L"Old", L"o");
        m_settings.values[L"show_training_prompt"] = L"1";
    }

    const fileMap oldFiles = {{L"old.vlm", "old"}, {L"updata.vls", "data"}, {L"kept.txt", "kept"}};
};

TEST_F(Restore, TheCountOfElementsTellsWhatIsReadAndHow)
{
    const bytes links =
        seq({seq({wide(L"n"), wide(L"t"), wide(L"new.vlm"), integer(1), wide(L"")})});
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
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        makeOldState();
        EXPECT_EQ(restore(c.backup), c.restored ? S_OK : E_UNEXPECTED);
        EXPECT_EQ(files(m_personal),
                  c.restored ? (fileMap{{L"kept.txt", "kept"}, {L"new.vlm", "new"}}) : oldFiles);
        EXPECT_EQ(files(m_cache), (fileMap{{L"alien.vlm", "alien"}}));
        const QL quickLinks;
        ASSERT_EQ(quickLinks.records.size(), c.restored ? 1u : 0u);
        EXPECT_TRUE(!c.restored || quickLinks.records[0].name == "n");
        EXPECT_EQ(category(L"Old"), c.categories ? L"" : L"o");
        EXPECT_EQ(category(L"New"), c.categories ? L"n" : L"");
        EXPECT_EQ(m_settings.values[L"show_training_prompt"], c.prompt);
        EXPECT_EQ(posted(), c.restored ? postings({{0, 0}}) : postings{});
    }
}

TEST_F(Restore, AStoredNameDecidesTheTarget)
{
    const struct {
        std::wstring name;
        std::wstring target; // below the root; empty for none
    } cases[] = {
        {L"C:\\x\\y.vlm", L"personal\\y.vlm"},
        {L"..\\..\\evil.exe", L"personal\\evil.exe"},
        {L"x/y:z.vlm", L"personal\\z.vlm"},
        {std::wstring(L"b.vlm\0c", 7), L"personal\\b.vlm"},
        {L"", L""},
        {L"sub\\", L""},
        {L"..", L""},
        {L"a?.vlm", L""},
        {L"alien|", L""},
        {L"ALIEN|q.vlm", L""}, // no mark, and no name for a file
        {L"alien|" + m_cache + L"..\\personal\\d.vlm", L"personal\\d.vlm"},
        {L"alien|" + m_cache + L"c.vlm", L"cache\\c.vlm"},
        {L"alien|" + m_root + L"missing\\c.vlm", L""}, // folders are not made
        {std::wstring(40000, L'n'), L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8FromWide(c.name.substr(0, 60)));
        clear();
        EXPECT_EQ(restore(seq({seq({filePair(c.name, "content")}), none})), S_OK);
        fileMap found;
        for (const wchar_t* folder : {L"personal\\", L"cache\\"}) {
            for (const auto& [name, content] : files(m_root + folder))
                found[folder + name] = content;
        }
        EXPECT_EQ(found, c.target.empty() ? fileMap{} : fileMap({{c.target, "content"}}));
    }
    m_settings.values[L"path_localstorage_dir"].pop_back(); // a text in front of the name, no more
    EXPECT_EQ(restore(seq({newFile, none})), S_OK);
    EXPECT_TRUE(DeleteFileW((m_root + L"personalnew.vlm").c_str()));
}

TEST_F(Restore, APairGivesTheBytesThatItsSecondElementHolds)
{
    const bytes pairs =
        seq({seq({wide(L"none.vlm")}), seq({wide(L"empty.vlm"), octets("")}),
             seq({wide(L"integer.vlm"), integer(5)}), // refused: stays encoded
             seq({wide(L"more.vlm"), octets("1"), octets("2")}), seq({}), octets("no pair"),
             filePair(L"twice.vlm", "first and longer"), filePair(L"TWICE.vlm", "second")});
    EXPECT_EQ(restore(seq({pairs, none})), S_OK);
    EXPECT_EQ(files(m_personal), (fileMap{{L"kept.txt", "kept"},
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
        {record(wide(L"\x00E9"), integer(7), {integer(1)}), TextForm::Wide, "\xC3\xA9", 7, true},
        {oldRecord(narrow("\xC3\xA9")), TextForm::Octets, "\xC3\xA9", 7, false},
        {record(wide(L"n"), integer(0xFF)), TextForm::Wide, "n", 0xFF, false},
        {record(wide(L"n"), {0x02, 0x00}, {integer(2)}), TextForm::Wide, "n", 0, false},
        {record(wide(L"n"), octets("\1"), {octets("\1")}), TextForm::Wide, "n", 0, false},
        // Text in the other form stays encoded, and its bytes are the text.
        {record(narrow("ab"), integer(1)), TextForm::Wide, "\xCC\x84\xE6\x89\xA1", 1, false},
        {oldRecord(wide(L"n")), TextForm::Octets, "\x1E\x04", 7, false},
        {record(wide(L"n"), integer(1), {integer(1), integer(1)}), TextForm::Wide, nullptr, 0,
         false},
        {seq({wide(L"n"), wide(L"t"), wide(L"m.vlm"), integer(1)}), TextForm::Wide, nullptr, 0,
         false},
        {octets("no record"), TextForm::Wide, nullptr, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        write(m_personal + L"m.vlm", "");
        write(m_personal + L"new.vlm", "");
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
    const bytes mixed =
        seq({seq({wide(L"n"), wide(L"t"), wide(L"Case/M.vlm"), integer(1), wide(L"")})});
    CStorageData::RestoreQuickLinks(CDerElement(mixed), TextForm::Wide);
    EXPECT_TRUE(traced(L"U bs3: c:/some/folder/Case/M.vlm"));
}

std::wstring failingSuffix;
const importPatch_t* failing = nullptr;

BOOL WINAPI FailingDelete(LPCWSTR path)
{
    return !std::wstring(path).ends_with(failingSuffix) &&
           importOriginal<decltype(&DeleteFileW)>(*failing)(path);
}

BOOL WINAPI FailingWrite(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED how)
{
    const bool fails = size == 6 && std::memcmp(data, "failed", 6) == 0;
    const auto write = importOriginal<decltype(&WriteFile)>(*failing);
    return write(file, data, fails ? 3 : size, written, how) && !fails;
}

TEST_F(Restore, AFailingFileCallCostsThatFileAlone)
{
    const bytes backup = seq({seq({filePair(L"old.vlm", "new"), filePair(L"bad.vlm", "failed"),
                                   filePair(L"good.vlm", "g")}),
                              none});
    const struct {
        const char* function;
        void* replacement;
        const wchar_t* suffix;
        std::wstring message;
        fileMap files;
    } cases[] = {
        {"DeleteFileW",
         reinterpret_cast<void*>(&FailingDelete),
         L".vlm",
         L"U Failed to delete 1 files",
         {{L"old.vlm", "new"}, {L"bad.vlm", "failed"}, {L"good.vlm", "g"}}},
        {"DeleteFileW",
         reinterpret_cast<void*>(&FailingDelete),
         L".vls",
         L"U Failed to delete " + m_personal + L"updata.vls file.",
         {{L"old.vlm", "new"},
          {L"updata.vls", "data"},
          {L"bad.vlm", "failed"},
          {L"good.vlm", "g"}}},
        {"WriteFile",
         reinterpret_cast<void*>(&FailingWrite),
         L"",
         L"U Error writing File: " + m_personal + L"bad.vlm",
         {{L"old.vlm", "new"}, {L"bad.vlm", "fai"}, {L"good.vlm", "g"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.c_str());
        makeOldState();
        DeleteFileW((m_personal + L"kept.txt").c_str());
        failingSuffix = c.suffix;
        m_trace.messages();
        const importPatch_t patch(GetModuleHandleW(nullptr), c.function, c.replacement);
        ASSERT_TRUE(patch.found());
        failing = &patch;
        EXPECT_EQ(restore(backup), S_OK);
        EXPECT_TRUE(traced(c.message));
        EXPECT_EQ(files(m_personal), c.files);
    }
    makeOldState();
    const std::wstring held = m_personal + L"old.vlm";
    const CFileHandle holder(CreateFileW(held.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(restore(backup), S_OK); // neither deleted nor written
    EXPECT_EQ(files(m_personal)[L"old.vlm"], "old");
    EXPECT_EQ(files(m_personal)[L"good.vlm"], "g");
    EXPECT_EQ(posted().size(), 4u);
}

TEST_F(Restore, WhatIsNoByteArrayTouchesNothing)
{
    const struct {
        VARTYPE told;
        VARTYPE held; // VT_EMPTY: no array
        HRESULT status;
        const wchar_t* message;
    } cases[] = {
        {VT_ARRAY | VT_BSTR, VT_BSTR, E_INVALIDARG, L"E -2147024809 SetStorageData[com]"},
        {VT_EMPTY, VT_EMPTY, E_INVALIDARG, L"E -2147024809 SetStorageData[com]"},
        {VT_ARRAY | VT_UI1, VT_EMPTY, E_FAIL, L"E 0 SetStorageDataoo"},
        {VT_ARRAY | VT_UI1, VT_BSTR, E_FAIL, L"E 0 SetStorageDataoo"},
        {VT_ARRAY | VT_UI1, VT_UI1, E_UNEXPECTED, L"E -2147418113 SetStorageData[com]"}, // empty
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        VARIANT data = {};
        data.vt = c.told;
        data.parray = c.held == VT_EMPTY ? nullptr : SafeArrayCreateVector(c.held, 0, 0);
        EXPECT_EQ(m_plugin->SetStorageData(&data), c.status);
        EXPECT_TRUE(traced(c.message));
        SafeArrayDestroy(data.parray);
    }
    EXPECT_EQ(m_plugin->SetStorageData(nullptr), E_POINTER);
    EXPECT_EQ(files(m_personal), oldFiles);
    EXPECT_EQ(posted(), postings{});
}

TEST_F(Restore, TheFlagsGoToTheAgentAsTwoWords)
{
    ATL::CComVariant data;
    byteArray(data, seq({none, none}), 5); // any lower bound
    EXPECT_EQ(m_plugin->SetStorageData2(0x00010002, &data), S_OK);
    EXPECT_TRUE(traced(L"U lBound = 5, uBound = 10"));
    EXPECT_EQ(m_plugin->SetStorageData2(0xFFFF8000, &data), S_OK);
    EXPECT_EQ(posted(), (postings{{1, 2}, {0xFFFF, 0x8000}}));
    DestroyWindow(m_agent);
    EXPECT_EQ(m_plugin->SetStorageData2(0, &data), S_OK);
    EXPECT_TRUE(traced(L"U VlAgent window NOT found!"));
}

HRESULT destroyed = E_PENDING;

HRESULT WINAPI SeenDestroy(SAFEARRAY* array)
{
    return destroyed = importOriginal<decltype(&SafeArrayDestroy)>(*failing)(array);
}

TEST_F(Restore, WhatRaisesLeavesTheEarlierElementsRestoredAndTheArrayAccessed)
{
    const bytes document = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":7}}})")});
    const bytes backup = seq({integer(1), octets("refused"), newCategory, document});
    const importPatch_t patch(GetModuleHandleW(nullptr), "SafeArrayDestroy",
                              reinterpret_cast<void*>(&SeenDestroy));
    failing = &patch;
    EXPECT_EQ(restore(backup), E_UNEXPECTED);
    EXPECT_EQ(destroyed, S_OK); // the plug-in's copy is not left behind
    EXPECT_TRUE(traced(L"E 0 SetStorageData[std]Type is not convertible to string"));
    EXPECT_EQ(files(m_personal), (fileMap{{L"kept.txt", "kept"}}));
    EXPECT_EQ(category(L"New"), L"n");
    EXPECT_EQ(posted(), postings{});
    CVLByteArray array;
    array.Add(backup);
    EXPECT_THROW(RestoreFromSafeArray(array), std::exception);
    EXPECT_EQ(array.Get()->cLocks, 2u);
    SafeArrayUnaccessData(array.Get());
}

TEST_F(Restore, BadBytesAreRefusedWholeOrRestoredInPart)
{
    const bytes whole =
        seq({newFile, seq({record(wide(L"n"), integer(1))}), newCategory, hiddenPrompt});
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(restore({whole.data(), whole.data() + size}), E_UNEXPECTED) << size;
    EXPECT_EQ(files(m_personal), oldFiles);

    bytes deep = {0x00, 0x30}; // from the inside outwards
    for (int level = 0; level < 100000; ++level) {
        const auto size = static_cast<uint32_t>(deep.size());
        for (int shift = 0; shift < 32; shift += 8)
            deep.push_back(static_cast<uint8_t>(size >> shift));
        deep.insert(deep.end(), {0x84, 0x30});
    }
    std::reverse(deep.begin(), deep.end());
    const struct {
        bytes backup;
        HRESULT status;
    } cases[] = {
        {{0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x30, 0x00, 0x30, 0x00}, E_UNEXPECTED},
        {{0x30, 0x80, 0x30, 0x00, 0x30, 0x00, 0x00, 0x00}, E_UNEXPECTED},
        {{0x30, 0x04, 0x30, 0x00, 0x30, 0x7F}, E_UNEXPECTED},
        {{0x30, 0x04, 0x30, 0x00, 0x30, 0x00, 0xFF, 0xFF}, S_OK}, // bytes behind it
        {seq({octets("a"), integer(1), wide(L"b"), integer(2)}), S_OK},
        {seq({{0x30, 0x02, 0x30, 0x10}, {0x30, 0x03, 0x30, 0x84, 0xFF}, none, none}), S_OK},
        {seq({tlv(0x30, bytes(200000, 0)), tlv(0x30, bytes(200000, 0))}), S_OK},
        {seq({deep, deep, deep}), S_OK},
        {seq({seq(std::vector<bytes>(100000, filePair(L"", "x"))),
              seq(std::vector<bytes>(10000, record(wide(L""), integer(1)))), none}),
         S_OK},
    };
    for (const auto& c : cases)
        EXPECT_EQ(restore(c.backup), c.status) << &c - cases;

    std::mt19937 random(20240607);
    for (int round = 0; round < 100; ++round) {
        bytes backup = whole;
        for (int i = 0; i < 3; ++i)
            backup[random() % backup.size()] = static_cast<uint8_t>(random());
        const HRESULT status = restore(backup);
        EXPECT_TRUE(status == S_OK || status == E_UNEXPECTED) << std::hex << status;
    }
}

} // namespace
