#include "surroundings.h"

#include <algorithm>

#include "storage/settings.h"
#include "storage/settingsprovider.h"

using VloSet = Surroundings;

TEST_F(VloSet, AnswersItsKeysAndKeepsWhatIsSet)
{
    // The library as it is installed, beside this program.
    const auto program = std::filesystem::path(moduleFileName(nullptr));
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", program.parent_path().wstring());
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
        {library.env, L"path_alienstorage_dirs", L"%APPDATA%|x"},
        {library.query, L"path_wrgKrs_inusedir", large},
        {library.query, L"useGrabbingCreds", L"0"},
        {library.query, L"is_personalmode", L"none"}};
    for (const auto& [function, key, value] : cases) {
        const SettingsProvider provider{nullptr, function, nullptr, nullptr, nullptr};
        settings_replace(&provider);
        EXPECT_EQ(settings_getstring(key, L"none"), value);
    }
    const SettingsProvider lister{nullptr, library.diag, library.set, nullptr, nullptr};
    settings_replace(&lister);
    EXPECT_EQ(std::ranges::count(settings_getpath(L""), L'\n'), 17); // a line for each key
    EXPECT_EQ(settings_set(L"is_personalmode", L"1"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(settings_set(L"open_guard_desk_qa", L"Alt+\u00E4 %APPDATA%"), S_OK);
    settings_replace(nullptr);
    FreeLibrary(library.module);
    IN_FRESH_PROCESS({
        // Handlers run last in, first out: this one sees what the settings link's own has done.
        std::atexit([] { _exit(GetModuleHandleW(L"VloSet.dll") ? 3 : HasFailure()); });
        EXPECT_EQ(settings_getpath(L"open_guard_desk_qa"), L"Alt+\u00E4 %APPDATA%");
        EXPECT_TRUE(GetModuleHandleW(L"VloSet.dll"));
    });
}
