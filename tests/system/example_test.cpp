#include "installation.h"

namespace {

using Example = installedTest;

TEST_F(Example, HostShowsWhatIsRegisteredAndFailsForWhatDoesNotLoad)
{
    if (!setOldSystem(L"vl_example_host.exe"))
        GTEST_SKIP() << "the texts would come from the system's loader";
    const std::wstring key = m_key + LR"(\VLKT\Plugins\UIElements\AppControl\)";
    const fs::path dll = m_built / L"VLOnlineIDs.dll";
    const auto shown = [&] {
        const fs::path host = m_built / L"vl_example_host.exe", output = m_root / L"shown.txt";
        const int status =
            _wsystem((L"\"\"" + host.wstring() + L"\" >" + output.wstring() + L'"').c_str());
        return fileBytes(output) + "exit status " + std::to_string(status);
    };
    std::string good = "plug-in " + utf8FromWide(dll.wstring()) +
                       "\r\nname    Veltrano Personal Security Password Manager\r\n";
    EXPECT_EQ("exit status 1", shown()) << "nothing is registered";
    const plugin_t plugin;
    EXPECT_EQ(S_OK, plugin.entry<HRESULT WINAPI()>("DllRegisterServer")());
    EXPECT_EQ(good +
                  "status  Password Manager isn't set up yet. Open Veltrano Personal Security to "
                  "store your first logon.\r\nlevel   2\r\nexit status 0",
              shown());
    EXPECT_EQ(S_OK, plugin.as<IVLKTDisableApp>()->DisableLocal(1));
    good += "off     Your administrator has turned off Veltrano Personal Security Password Manager."
            "\r\nlevel   2\r\n";
    setValue(HKEY_LOCAL_MACHINE, key + L"{00000000-0000-0000-0000-000000000001}", nullptr,
             L"%SystemDrive%\\missing.dll", REG_EXPAND_SZ);
    EXPECT_EQ("plug-in C:\\missing.dll\r\nfailed  0x8007007E\r\n" + good + "exit status 1",
              shown());
}

} // namespace
