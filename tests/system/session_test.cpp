#include "installation.h"

namespace {

using Session = installedTest;

void information(const plugin_t& plugin)
{
    const auto element = plugin.as<IVLKTElementUI>();
    const auto info = plugin.as<IVLKTPluginInfo>();
    value_t value, number;
    number.vt = VT_I4;
    for (const ULONG id : {1u, 2u, 3u, 4u, 8u, 100u, 101u, 103u})
        EXPECT_EQ(S_OK, element->GetProperty(id, &value)) << id;
    EXPECT_EQ(L"|Password Manager", // from the plug-in itself, which a current system asks
              plugin.property(propertyName) + L'|' + plugin.property(propertyFixedName));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_UNKNOWN_PROPERTY), element->GetProperty(102, &value));
    EXPECT_EQ(E_NOTIMPL, element->SetProperty(2, &value));
    EXPECT_EQ(E_POINTER, element->GetProperty(1, nullptr));
    EXPECT_EQ(E_POINTER, plugin.as<IVLKTDisableApp>()->GetStatus(nullptr));
    EXPECT_EQ(S_OK, info->GetInfo(0, &value));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_UNKNOWN_PROPERTY), info->GetInfo(1, &number));
    EXPECT_EQ(S_OK, plugin.as<IVLKTPages>()->AddPages());
    EXPECT_EQ(S_OK, plugin.as<IVLKTTraySubscribe>()->Subscribe());
}

void pluginData(const plugin_t& plugin)
{
    const bytes secrets =
        seq({seq({wide(L"of"), octets("three"), octets("elements")}),
             seq({wide(L"KRS Protected Storage"), octets(std::string("S\0\0\0", 4))})});
    const bytes legacy =
        seq({seq({filePair(L"bank.vlm", "bank"), filePair(L"updata.vls", "state")}), seq({}),
             seq({}), seq({integer(1), wide(L"Ctrl+1"), octets("abc")})});
    const auto restore = plugin.as<IVLKTBackupRestore3>();
    EXPECT_EQ(E_POINTER, restore->SetPluginData(0, nullptr, 1, nullptr));
    EXPECT_EQ(E_INVALIDARG, restore->SetPluginData(0, nullptr, 0, legacy.data()));
    EXPECT_EQ(S_OK, restore->SetPluginData(static_cast<ULONG>(secrets.size()), secrets.data(),
                                           static_cast<ULONG>(legacy.size()), legacy.data()));
}

TEST_F(Session, IsTracedRecordByRecord)
{
    const std::wstring many(5000, L'|'); // empty ones
    setValue(HKEY_CURRENT_USER, m_key + L"\\Settings", L"path_alienstorage_dirs",
             many + LR"(%SystemDrive%\VL\shared|C:\VL\shared\|rel)");
    setValue(HKEY_CURRENT_USER, m_key + L"\\Settings", L"useGrabbingCreds", L"1");
    writeFile(m_root / L"shared" / L"s.vlm", "shared");
    value_t names, own, threeData(newLogon()), oneData(seq({}));
    startAgent();
    {
        const plugin_t plugin;
        value_t none, text;
        const auto restore = plugin.as<IVLKTBackupRestore2>();
        const std::wstring dll = (m_built / L"VLOnlineIDs.dll").wstring();
        const process_t platformsTool(LR"(C:\windows\system32\regsvr32.exe)",
                                      L"/s \"" + dll + L'"');
        EXPECT_EQ(0u, platformsTool.result().status);
        information(plugin);
        const std::string links = fileBytes(m_krs / L"QuickLinks.txt");
        pluginData(plugin);
        EXPECT_EQ(std::string("\x04\0\x03\0a", 5), fileBytes(m_krs / L"DontPrompt.txt"));
        writeFile(m_krs / L"QuickLinks.txt", links);
        EXPECT_EQ(S_OK, restore->GetStorageData(&names, &own));
        EXPECT_EQ(VT_ARRAY | VT_BSTR, names.vt) << "the agent has the secret now";
        fs::remove(m_root / L"shared" / L"s.vlm");
        EXPECT_EQ(S_OK, restore->SetStorageData2(0x00010002, &own));
        EXPECT_EQ("shared", fileBytes(m_root / L"shared" / L"s.vlm"));
        EXPECT_EQ(S_OK, restore->SetStorageData(&threeData));
        stopAgent();
        const std::string journal = fileBytes(m_root / L"journal.txt");
        EXPECT_NE(std::string::npos, journal.find(R"("wParam":1,"lParam":2)"));
        EXPECT_EQ(S_OK, restore->SetStorageData(&threeData));
        const auto before = userFiles();
        EXPECT_EQ(E_POINTER, restore->SetStorageData(nullptr));
        EXPECT_EQ(E_INVALIDARG, restore->SetStorageData2(0, &none));
        EXPECT_EQ(E_UNEXPECTED, restore->SetStorageData(&oneData));
        EXPECT_EQ(before, userFiles());
        const auto application = plugin.as<IVLKTDisableApp>();
        ULONG status = 9;
        EXPECT_EQ(S_OK, application->DisableLocal(1));
        EXPECT_EQ(S_OK, application->GetStatus(&status));
        EXPECT_EQ(3u, status);
        text.vt = VT_BSTR;
        EXPECT_EQ(E_NOTIMPL, plugin.as<IVLKSecurityStatus>()->GetStatus(&status, &text.bstrVal));
        EXPECT_EQ(S_OK, plugin.as<IVLKTElementUI>()->GetProperty(propertyNotifications, &none));
        EXPECT_EQ(S_OK, plugin.entry<HRESULT WINAPI()>("DllUnregisterServer")());
    }
    std::string text = expected(L"SESSION");
    replaceAll(text, "{own}", std::to_string(bytesOf(own).size() - 1));
    EXPECT_EQ(text, traced());
}

} // namespace
