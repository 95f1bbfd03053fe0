#include <functional>

#include "installation.h"

namespace {

const std::string backup = R"(> CVLKTPages::GetStorageData | > prepfolderlist
  U cache '{krs}Cache\' | U local '{krs}Templates\'
  > checkpath | E 0 strange path ''
  E 0 path is invalid ''
  > checkpath | E 0 strange path ''
  E 0 path is invalid '' | U done{lf}
 > collectall | U local folders
  > enumfnames | U   'c:\vl\templates\*.vlm'
  > enumfnames | U   'krs::cache\*.vlm'
  > enumfnames | U   'kri::*.vlm'
 E 0 inv.line 'junk'
 U Pre train [default] = Hide | U Pre train [current] = Hide | U Hotkey    [current] = Ctrl+Win+72
 U Use Grabbing Creds  = No
)";
const std::string restoreHead = "> CVLKTPages::SetStorageData2 | U lBound = 0, uBound = {size}\n";
const std::string restore = restoreHead + "{new}\n";
const std::string noPolicy = R"(> CVLKTPages::GetProperty | > CVLKTPages::GetExplanation
  > CVLKTPages::GetStatus | > GetGPOSettings | E -2147024770 GetGPOSettings[com]
> CVLKTPages::GetStorageData | E -2147024770 GetStorageData[com]
)";

using Missing = installedTest;

TEST_F(Missing, EachOutsideThingIsMissedAsToldAndNothingElseSuffers)
{
    const std::string before = "QuickLinks.txt Templates\\bank.vlm Templates\\updata.vls ";
    const std::string restored = "QuickLinks.txt Templates\\new.vlm ";
    const auto dropKeys = [&] {
        for (const wchar_t* key : {L"\\Applications", L"\\Branding"})
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, (m_key + key).c_str());
    };
    const auto dropPolicy = [&] { fs::remove(m_policyLibrary); };
    const struct {
        std::function<void()> remove; // called before the backup and before the restore
        std::wstring icon;
        std::string trace;
        std::string left;
    } cases[] = {
        {dropPolicy, m_icon, noPolicy + restore, restored},
        {dropKeys, L",193",
         "> CVLKTPages::GetProperty | > CBranding::LoadResourceDLL\n"
         "  U Open Branding key SOFTWARE\\Veltrano\\Branding\\Common in registry Failed\n" +
             restoreHead + " > RestoreQuickLinks | U SAQL OK, Num BLOBs=1\n",
         before},
        {[&] { fs::remove_all(m_krs); }, m_icon, restore + "   E 0 savefile exception\n", ""},
        {[&] { stopAgent(); }, m_icon,
         backup + restore + " U '`I04`'VLAgent not running | U VlAgent window NOT found!\n",
         restored},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        TearDown();
        SetUp();
        startAgent();
        c.remove();
        {
            const plugin_t plugin;
            EXPECT_EQ(c.icon, plugin.property(propertyIconLocation));
            plugin.property(propertyExplanation);
            value_t names, data, logon(newLogon());
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data));
            EXPECT_EQ(c.trace.find(backup) != std::string::npos ? VT_ARRAY | VT_UI1 : VT_EMPTY,
                      data.vt);
            c.remove();
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->SetStorageData2(0, &logon));
        }
        EXPECT_EQ(tree(c.trace), traced());
        std::string left;
        for (const auto& [name, content] : userFiles())
            left += name + ' ';
        EXPECT_EQ(c.left, left);
        EXPECT_EQ(c.left == before, fs::exists(L"new.vlm")); // its folder is unknown
    }
}

} // namespace
