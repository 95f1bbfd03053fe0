#include "installation.h"

namespace {

using Registration = installedTest;

TEST_F(Registration, ThePlatformsOwnToolRegistersAndUnregisters)
{
    const std::wstring dll = m_built / L"VLOnlineIDs.dll";
    const std::wstring registered = dll + L'\0' +
                                    std::wstring(L"6.0\0"
                                                 L"7.0\0"
                                                 L"8.0\0",
                                                 13);
    const std::wstring quoted = L'"' + dll + L'"'; // the tool takes a folder with a blank apart
    const std::wstring plugins = m_key + LR"(\VLKT\Plugins)";
    const std::wstring other = plugins + LR"(\UIElements\AppControl\{other})";
    setText(HKEY_LOCAL_MACHINE, other, nullptr, L"");
    for (const wchar_t* option : {L"/u", L"/s", L"/s", L"/u", L"/u"}) {
        EXPECT_EQ(0, _wspawnl(_P_WAIT, LR"(C:\windows\system32\regsvr32.exe)", L"regsvr32", L"/s",
                              option, quoted.c_str(), nullptr));
        for (const wchar_t* role :
             {L"TrayIcon", L"UIElements\\AppControl", L"UIElements\\BackupRestore"}) {
            const std::wstring key =
                plugins + L'\\' + role + L"\\{42F9948B-B690-4325-A073-63A8BF31FF32}";
            std::wstring found;
            for (const auto& [name, type] :
                 {std::pair{L"", REG_EXPAND_SZ}, {L"TargetShellVersions", REG_MULTI_SZ}}) {
                wchar_t data[300];
                DWORD size = sizeof data, kind = 0;
                if (!RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND,
                                  &kind, data, &size) &&
                    kind == static_cast<DWORD>(type))
                    found.append(data, size / sizeof *data);
            }
            EXPECT_EQ(option == std::wstring(L"/s") ? registered : L"", found) << role;
        }
    }
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, other.c_str()));
    EXPECT_NE(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, (plugins + L"\\TrayIcon").c_str()));
}

} // namespace
