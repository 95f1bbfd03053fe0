#include "backupfixture.h"
#include "storage/paths.h"

namespace {

using namespace std::string_literals;

const bytes none = seq({});
const bytes newFile = seq({filePair(L"new.vlm", "new")});
const bytes newCategory = seq({seq({wide(L"New"), wide(L"n")})});
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

decltype(&WriteFile) originalWrite = nullptr;

BOOL WINAPI FailingWrite(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED how)
{
    const bool fails = size == 6; // those of "failed"
    return originalWrite(file, data, fails ? 3 : size, written, how) && !fails;
}

TEST_F(Restore, AFailureCostsThatFileAlone)
{
    const auto hold = [&](const wchar_t* name) {
        return CFileHandle(CreateFileW((m_personal + name).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_ALWAYS, 0, nullptr));
    };
    const CFileHandle held[] = {hold(L"held.vlm"), hold(L"old.vlm"), hold(L"updata.vls")};
    const importPatch_t patch("WriteFile", &FailingWrite);
    originalWrite = importOriginal<decltype(&WriteFile)>(patch);
    EXPECT_EQ(restore(seq({seq({filePair(L"held.vlm", "c"), filePair(L"old.vlm", "c"),
                                filePair(L"bad.vlm", "failed"), filePair(L"last.vlm", "c")}),
                           none})),
              S_OK);
    EXPECT_EQ(files(), (fileMap{{L"personal\\updata.vls", "data"},
                                {L"personal\\kept.txt", "kept"},
                                {L"cache\\alien.vlm", "alien"},
                                {L"personal\\held.vlm", ""},
                                {L"personal\\old.vlm", "old"},
                                {L"personal\\bad.vlm", "fai"},
                                {L"personal\\last.vlm", "c"}}));
    EXPECT_NE(m_trace.joined().find(L"|U Failed to delete 2 files|U Failed to delete " +
                                    m_personal + L"updata.vls file.|U Error writing File: " +
                                    m_personal + L"bad.vlm"),
              std::wstring::npos);
    m_settings.values[L"path_localstorage_dir"].pop_back(); // a text in front of the name, no more
    EXPECT_EQ(restore(seq({newFile, none})), S_OK);
    EXPECT_EQ(files()[L"personalnew.vlm"], "new");
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
