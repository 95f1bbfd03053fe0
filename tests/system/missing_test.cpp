#include "installation.h"

#include <functional>

namespace {

const std::string restoreHead = "> CVLKTPages::SetStorageData2 | U lBound = 0, uBound = {size}\n";
const std::string restore = restoreHead + "{new}\n";
const std::string noPolicy = R"(> CVLKTPages::GetProperty | > CVLKTPages::GetExplanation
  > CVLKTPages::GetStatus | > GetGPOSettings | E -2147024770 GetGPOSettings[com]
> CVLKTPages::GetStorageData | E -2147024770 GetStorageData[com]
)";

using Missing = installedTest;

TEST_F(Missing, OutsideThingsLeaveTheirOwnTracesAndNothingElseSuffers)
{
    const std::string before = "QuickLinks.txt Templates\\bank.vlm Templates\\updata.vls ";
    const std::string restored = "QuickLinks.txt Templates\\new.vlm ";
    const auto dropKeys = [&] {
        for (const wchar_t* key : {L"\\Applications", L"\\Branding"})
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, (m_key + key).c_str());
    };
    const auto dropPolicy = [&] { fs::remove(m_policyLibrary); };
    const std::tuple<std::function<void()>, std::wstring, std::string, std::string> cases[] = {
        {dropPolicy, m_icon, noPolicy + restore, restored},
        {dropKeys, L",193",
         "> CVLKTPages::GetProperty | > CBranding::LoadResourceDLL\n"
         "  U Open Branding key SOFTWARE\\Veltrano\\Branding\\Common in registry Failed\n" +
             restoreHead + " > RestoreQuickLinks | U SAQL OK, Num BLOBs=1\n",
         before},
        {[&] { fs::remove_all(m_krs); }, m_icon, restore + "   E 0 savefile exception\n", ""},
    };
    for (const auto& [remove, icon, trace, filesLeft] : cases) {
        SCOPED_TRACE(trace);
        TearDown();
        SetUp();
        startAgent();
        remove();
        {
            const plugin_t plugin;
            EXPECT_EQ(icon, plugin.property(propertyIconLocation));
            plugin.property(propertyExplanation);
            value_t names, data, logon(newLogon());
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data));
            EXPECT_EQ(VT_EMPTY, data.vt);
            remove(); // before the restore, too
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->SetStorageData2(0, &logon));
        }
        EXPECT_EQ(tree(trace), traced());
        std::string left;
        for (const auto& [name, content] : userFiles())
            left += name + ' ';
        EXPECT_EQ(filesLeft, left);
        EXPECT_EQ(filesLeft == before, fs::exists(L"new.vlm")); // its folder is unknown
    }
}

} // namespace
