#include "surroundings.h"

#include "storage/settings.h"
#include "storage/settingsprovider.h"

struct VloSet : Surroundings {
    VloSet() // the library as it is installed, beside this program
    {
        const auto program = std::filesystem::path(moduleFileName(nullptr));
        setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", program.parent_path().wstring());
    }
};

TEST_F(VloSet, AnswersItsKeysAndNothingElse)
{
    const std::wstring stored = LR"(SOFTWARE\Veltrano\Settings)", large(5000, L'l');
    setValue(HKEY_CURRENT_USER, stored, L"path_alienstorage_dirs", L"%APPDATA%|x", REG_EXPAND_SZ);
    setValue(HKEY_CURRENT_USER, stored, L"path_wrgKrs_inusedir", large);
    setValue(HKEY_CURRENT_USER, stored, L"useGrabbingCreds", L"1", REG_BINARY); // no text
    const SettingsProvider library = settings_load();
    const std::tuple<SettingsCall, const wchar_t*, std::wstring> cases[] = {
        {library.query, L"path_cachestorage_dir", LR"(C:\A\R\Veltrano\KRS\Cache\)"},
        {library.env, L"path_cachestorage_dir", LR"(%APPDATA%\Veltrano\KRS\Cache\)"},
        {library.diag, L"is_personalMode", L"is_personalMode = '0' (default)"},
        {library.query, L"path_alienstorage_dirs", LR"(C:\A\R|x)"},
        {library.query, L"path_wrgKrs_inusedir", large},
        {library.query, L"useGrabbingCreds", L"0"},
        {library.query, L"is_personalmode", L"none"}};
    for (const auto& [function, key, value] : cases) {
        const SettingsProvider provider{nullptr, function, library.set, nullptr, nullptr};
        settings_replace(&provider);
        EXPECT_EQ(settings_getstring(key, L"none"), value);
    }
    EXPECT_EQ(settings_set(L"is_personalmode", L"1"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    settings_replace(nullptr);
}

TEST_F(VloSet, KeepsWhatIsSetForOtherProcesses)
{
    if (!testing::internal::InDeathTestChild())
        settings_set(L"open_guard_desk_qa", L"Alt+\u00E4 %APPDATA%");
    IN_FRESH_PROCESS({
        // Handlers run last in, first out: this one sees what the settings link's own has done.
        std::atexit([] { _exit(GetModuleHandleW(L"VloSet.dll") ? 3 : HasFailure()); });
        EXPECT_EQ(settings_getpath(L"open_guard_desk_qa"), L"Alt+\u00E4 %APPDATA%");
        EXPECT_TRUE(GetModuleHandleW(L"VloSet.dll"));
    });
}
