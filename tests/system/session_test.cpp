#include "installation.h"

namespace {

constexpr char sessionTrace[] = R"(> CVLKTPages::GetProperty | E -2147467261 GetProperty[com]
> CVLKTPages::GetInfo | U 0 = {42F9948B-B690-4325-A073-63A8BF31FF32}[8]
> CVLKTPages::GetInfo | U 1 = [3] | E -2147023288{sp}
> CVLKTPages::Subscribe | U '`I04`'N/A
> CVLKTPages::SetPluginData | E -2147467261 SetPluginData[com]
> CVLKTPages::SetPluginData | E -2147024809 SetPluginData[com]
> CVLKTPages::SetPluginData | U Unknown secret blob | U Secret Name = KRS Protected Storage
 > RestoreQuickLinks | U SAQL OK, Num BLOBs=0
 U file name='{krs}DontPrompt.txt', dataLen = 5.
> CVLKTPages::GetStorageData
 > prepfolderlist | E 0 duplicated path in alien folders
  > checkpath | E 0 strange path 'rel\'
  E 0 path is invalid 'rel\' | U cache '{krs}Cache\' | U local '{krs}Templates\'
  > checkpath | E 0 strange path ''
  E 0 path is invalid ''
  > checkpath | E 0 strange path ''
  E 0 path is invalid '' | U done{lf}
 > collectall | U local folders
  > enumfnames | U   'c:\vl\shared\*.vlm'
  > enumfnames | U   'c:\vl\templates\*.vlm'
  > enumfnames | U   'krs::cache\*.vlm'
  > enumfnames | U   'kri::*.vlm'
 E 0 inv.line 'junk'
 U Pre train [default] = Hide | U Pre train [current] = Show | U Hotkey    [current] = Ctrl+1
 U Dont prmpt[size=5] = {krs}DontPrompt.txt | U Use Grabbing Creds  = Yes
> CVLKTPages::SetStorageData2 | U lBound = 0, uBound = {own}
 > RestoreQuickLinks | U SAQL OK, Num BLOBs=1
  U bs3: {lower}templates\bank.vlm
  > QL::add | U QL for: kri::bank.vlm | U   prof:  1 | U   name: 'Bank'
   U   url : 'https://bank.example/login?x=1' | U   QL created
  > QL::save | U save krs::quicklinks.txt
> CVLKTPages::SetStorageData | U lBound = 0, uBound = {size}
{new}
> CVLKTPages::SetStorageData | U lBound = 0, uBound = {size}
{new}
 U '`I04`'VLAgent not running | U VlAgent window NOT found!
> CVLKTPages::SetStorageData | E -2147467261 SetStorageData[com]
> CVLKTPages::SetStorageData2 | E -2147024809 SetStorageData2[com]
> CVLKTPages::SetStorageData | U lBound = 0, uBound = 1 | E -2147418113 SetStorageData[com]
> CVLKTPages::GetStatus | E -2147467263 GetStatus[com]
> CVLKTPages::GetProperty | > CVLKTPages::GetNotifications
  > CVLKTPages::GetExplanation | > CVLKTPages::GetStatus | E -2147467263 GetStatus[com]
  > CVLKTPages::GetSecurityLevel | > CVLKTPages::GetStatus | E -2147467263 GetStatus[com]
{cleanup}HKU	{d}DashBoard\IDCard	8{crlf}
{cleanup}HKU	{d}DashBoard	4097	LastQLCategory{crlf}
{cleanup}HKU	{d}DashBoard\QLCategories	4108{crlf}
{cleanup}HKU	{d}KRAppSettings	4101	OpenGuardDesk{crlf}
{cleanup}HKU	{d}KRAppSettings	4101	ShowTrainingPrompt{crlf}
{cleanup}HK	{d}DashBoard	4104{crlf}
{cleanup}FILE	Veltrano\KRS\Templates\*	4097{crlf}
{cleanup}FILE	Veltrano\KRS\VLIconCache\*	4097{crlf}
{cleanup}FILE	Veltrano\KRS\*	4097{crlf}
{cleanup}FILE	Veltrano\*	4097{crlf}
{cleanup}DIR	Veltrano	4096{crlf}
)";

using Session = installedTest;

void information(const plugin_t& plugin)
{
    const auto element = plugin.as<IVLKTElementUI>();
    const auto info = plugin.as<IVLKTPluginInfo>();
    value_t value, number;
    number.vt = VT_I4;
    for (const ULONG id : {1u, 2u, 3u, 4u, 8u, 100u, 101u, 103u})
        EXPECT_EQ(S_OK, element->GetProperty(id, &value)) << id;
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
    std::string expected = sessionTrace;
    replaceAll(expected, "{cleanup}",
               "> AddCleanupLine | U FilePath = C:\\VL\\Cleanup.txt | U accum = ");
    replaceAll(expected, "{own}", std::to_string(bytesOf(own).size() - 1));
    replaceAll(expected, "{d}", "SOFTWARE\\Veltrano\\Applications\\");
    EXPECT_EQ(tree(expected), traced());
}

} // namespace
