#include "backup/settingsdocument.h"
#include "backupfixture.h"
#include "support/growth.h"
#include "support/importhooks.h"

namespace {

using Restore = backupTest;

TEST_F(Restore, AFailureCostsThatFileAlone)
{
    const importHooks_t failing(
        GetModuleHandleW(nullptr), {{"WriteFile"}},
        [](const hookedCall_t& call) { return call.argument(2) == 6; }); // those of "failed"
    const bytes pairs = seq({filePair(L"bad.vlm", "failed"), filePair(L"last.vlm", "c")});
    EXPECT_EQ(restore(seq({pairs, seq({})})), S_OK);
    EXPECT_EQ(files(), (fileMap{{L"personal\\bad.vlm", ""}, {L"personal\\last.vlm", "c"}}));
    EXPECT_TRUE(traced(L"U Error writing File: " + m_personal + L"bad.vlm"));
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
    SAFEARRAYBOUND bounds[] = {{6, 5}, {1, 0}};        // of two dimensions the first counts
    const bytes nothing = bytesOf(data);
    data.Clear();
    data.vt = VT_ARRAY | VT_UI1;
    data.parray = SafeArrayCreate(VT_UI1, 2, bounds);
    std::ranges::copy(nothing, static_cast<uint8_t*>(data.parray->pvData));
    EXPECT_EQ(m_plugin.SetStorageData(&data), S_OK);
    const auto again = [&] {
        m_plugin.SetStorageData(&data);
        m_traces.all();
        m_settings.queried.clear();
    };
    EXPECT_EQ(grownBy(again), "");
}

TEST_F(Restore, SettingsOfAnotherShapeSetNothing)
{
    const std::pair<bytes, std::wstring> cases[] = {
        {{0x30, 0}, L"|E 0 Unsupported settings format."},
        {seq({narrow("")}), L"|U Empty json data."},
        {seq({narrow(std::string(100000, '['))}), L"|U Bad json format."},
        {seq({narrow(R"(/**/{"settings":{"current":[]}}//)")}), L""}}; // nor is it a failure
    for (const auto& [encoded, messages] : cases) {
        const CDerElement element(encoded);
        EXPECT_EQ(RestoreSettings(&element), messages.empty());
        EXPECT_EQ(m_traces.joined(), messages);
    }
    const bytes number = seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":72}}})")});
    EXPECT_EQ(restore(seq({seq({}), seq({}), seq({}), number})), E_UNEXPECTED);
}

} // namespace
