#include "installation.h"

#include <functional>

namespace {

using Missing = installedTest;

TEST_F(Missing, OutsideThingsLeaveTheirOwnTracesAndNothingElseSuffers)
{
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"policy library", [&] { fs::remove(m_policyLibrary); }},
        {"keys",
         [&] {
             for (const wchar_t* key : {L"\\Applications", L"\\Branding"})
                 RegDeleteTreeW(HKEY_LOCAL_MACHINE, (m_key + key).c_str());
         }},
        {"user's folder", [&] { fs::remove_all(m_krs); }}};
    std::string all;
    for (const auto& [name, remove] : cases) {
        TearDown();
        SetUp();
        startAgent();
        remove();
        {
            const plugin_t plugin;
            all += name + ", icon " + utf8FromWide(plugin.property(propertyIconLocation)) + '\n';
            plugin.property(propertyExplanation);
            value_t names, data, logon(newLogon());
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data));
            EXPECT_EQ(VT_EMPTY, data.vt);
            remove(); // before the restore, too
            EXPECT_EQ(S_OK, plugin.as<IVLKTBackupRestore2>()->SetStorageData2(0, &logon));
        }
        all += traced();
        for (const auto& [path, content] : userFiles())
            all += path + '\n';
        all += fs::exists(L"new.vlm") ? "new.vlm right here\n" : ""; // its folder is unknown
    }
    EXPECT_EQ(expected(L"MISSING"), all);
}

} // namespace
