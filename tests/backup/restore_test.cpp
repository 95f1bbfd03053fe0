#include "backup/settingsdocument.h"
#include "backupfixture.h"
#include "support/growth.h"
#include "support/importhooks.h"

namespace {

using Restore = backupTest;

TEST_F(Restore, AFailureCostsThatFileAlone)
{
    write(L"personal\\old.vlm", "old");
    write(L"personal\\older.vlm", "goes");
    write(L"personal\\updata.vls", "data");
    const auto hold = [&](const wchar_t* name) {
        return CFileHandle(CreateFileW((m_personal + name).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_ALWAYS, 0, nullptr));
    };
    const CFileHandle held[] = {hold(L"old.vlm"), hold(L"updata.vls")};
    const importHooks_t failing(
        GetModuleHandleW(nullptr), {{"WriteFile"}},
        [](const hookedCall_t& call) { return call.argument(2) == 6; }); // those of "failed"
    EXPECT_EQ(restore(seq({seq({filePair(L"old.vlm", "c"), filePair(L"bad.vlm", "failed"),
                                filePair(L"last.vlm", "c")}),
                           seq({})})),
              S_OK);
    EXPECT_EQ(files(), (fileMap{{L"personal\\updata.vls", "data"},
                                {L"personal\\old.vlm", "old"},
                                {L"personal\\bad.vlm", ""},
                                {L"personal\\last.vlm", "c"}}));
    EXPECT_TRUE(traced(L"U Failed to delete 1 files|U Failed to delete " + m_personal +
                       L"updata.vls file.|U Error writing File: " + m_personal + L"bad.vlm"));
}

TEST_F(Restore, OnlyAByteArrayIsTakenWhateverItsBound)
{
    VARIANT other = {};
    for (const VARTYPE type : {VT_EMPTY, VT_I1, VT_BSTR}) {
        other.vt = VT_ARRAY | VT_UI1;
        other.parray = type ? SafeArrayCreateVector(type, 0, 0) : nullptr;
        EXPECT_EQ(m_plugin.SetStorageData(&other), E_FAIL) << type;
        SafeArrayDestroy(other.parray);
    }
    ATL::CComVariant data;
    byteArray(data, seq({seq({}), seq({})}), 5); // any lower bound
    EXPECT_EQ(m_plugin.SetStorageData2(0xFFFF8000, &data), S_OK);
    EXPECT_TRUE(traced(L"U lBound = 5, uBound = 10"));
    EXPECT_EQ(posted(), (postings{{0xFFFF, 0x8000}})); // the flags as two words
    const auto again = [&] {
        m_plugin.SetStorageData(&data);
        m_traces.all();
        m_settings.queried.clear();
    };
    EXPECT_EQ(grownBy(again), "");
}

TEST_F(Restore, SettingsOfAnotherShapeSetNothing)
{
    EXPECT_FALSE(RestoreSettings(nullptr));
    EXPECT_EQ(m_traces.joined(), L"|U Invalid BLOB pointer.");
    const std::pair<bytes, std::wstring> cases[] = {
        {{0x30, 0}, L"|E 0 Unsupported settings format."},
        {seq({narrow("")}), L"|U Empty json data."},
        {seq({narrow(std::string(100000, '['))}), L"|U Bad json format."},
        {seq({narrow(R"({"settings":{"current":[]}})")}), L""}}; // nor is it a failure
    for (const auto& [encoded, messages] : cases) {
        const CDerElement element(encoded);
        EXPECT_EQ(RestoreSettings(&element), messages.empty());
        EXPECT_EQ(m_traces.joined(), messages);
    }
    const bytes number = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":72}}})")});
    EXPECT_EQ(restore(seq({seq({}), seq({}), seq({}), number})), E_UNEXPECTED);
}

} // namespace
