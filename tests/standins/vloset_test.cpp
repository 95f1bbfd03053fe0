#include "storage/settings.h"
#include "support/surroundings.h"

using VloSet = Surroundings;

TEST_F(VloSet, ExpandsPathsAndRefusesWhatIsNoTextOrKey)
{
    const std::wstring program = moduleFileName(nullptr); // the library lies beside it
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", program.substr(0, program.rfind(L'\\')));
    setValue(HKEY_LOCAL_MACHINE, applications + std::wstring(LR"(\KRS)"), L"BinDir", L"");
    const std::wstring stored = LR"(SOFTWARE\Veltrano\Settings)";
    const std::wstring many(300, L'x');
    setValue(HKEY_CURRENT_USER, stored, L"path_alienstorage_dirs", L"%APPDATA%|" + many,
             REG_EXPAND_SZ);
    setValue(HKEY_CURRENT_USER, stored, L"useGrabbingCreds", L"1", REG_BINARY); // no text
    IN_FRESH_PROCESS({
        EXPECT_EQ(settings_set(L"is_personalmode", L"1"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        EXPECT_EQ(settings_set(L"open_guard_desk_qa", L"Alt+\u00E4 %APPDATA%"), S_OK);
        EXPECT_EQ(settings_getstring(L"path_bin_dir", L"none"),
                  program.substr(0, program.rfind(L'\\')));
        EXPECT_EQ(settings_getstring(L"path_alienstorage_dirs", L"none"), LR"(C:\A\R|)" + many);
        EXPECT_EQ(settings_getstring(L"open_guard_desk_qa", L"none"), L"Alt+\u00E4 %APPDATA%");
        EXPECT_EQ(settings_getstring(L"useGrabbingCreds", L"none"), L"0");
        EXPECT_EQ(settings_getstring(L"is_personalmode", L"none"), L"none");
    });
}
