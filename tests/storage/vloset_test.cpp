#include "surroundings.h"

#include <oleauto.h>

#include "storage/settings.h"
#include "storage/settingsprovider.h"

// The library as it is installed, beside this program, and a user who has set nothing.
class VloSet : public testing::Test
{
protected:
    VloSet()
    {
        if (!testing::internal::InDeathTestChild())
            clearRegistry();
        const auto folder = std::filesystem::path(moduleFileName(nullptr)).parent_path();
        setValue(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\Applications)", L"BinDir", REG_SZ,
                 bytesOf(folder.wstring()));
    }
    static std::wstring answer(SettingsCall function, const wchar_t* key, uint32_t size = 20)
    {
        BSTR name = key ? SysAllocString(key) : nullptr, text = nullptr;
        SettingsRequest request{size, name, &text};
        const HRESULT status = function(&request);
        return SUCCEEDED(status) ? text : std::to_wstring(status);
    }
    environment_t m_roaming{L"APPDATA", LR"(C:\R)"};
};

TEST_F(VloSet, AnswersEveryKeyAndNothingElse)
{
    const SettingsProvider library = settings_load();
    const std::wstring all = answer(library.diag, L"");
    EXPECT_EQ(std::count(all.begin(), all.end(), L'\n'), 17);
    for (const wchar_t* line :
         {LR"(path_localstorage_dir = 'C:\R\Veltrano\KRS\Templates\' (default))",
          L"is_personalMode = '0' (default)", L"path_wrgKrs_inusedir = '' (default)"})
        EXPECT_NE(all.find(line), std::wstring::npos);
    EXPECT_EQ(answer(library.env, L"path_cachestorage_dir"), LR"(%APPDATA%\Veltrano\KRS\Cache\)");
    const std::wstring large(5000, L'l');
    const std::tuple<DWORD, std::string, std::wstring> cases[] = {
        {REG_SZ, bytesOf(L"%APPDATA%|x"), L"%APPDATA%|x"},
        {REG_EXPAND_SZ, bytesOf(L"%APPDATA%|x"), LR"(C:\R|x)"},
        {REG_SZ, bytesOf(large), large},
        {REG_SZ, std::string("a\0b\0", 4), L"ab"}, // no end
        {REG_DWORD, std::string("1\0\0\0", 4), L"0"},
    };
    for (const auto& [type, bytes, value] : cases) {
        setValue(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano\Settings)", L"intelauthenticate", type,
                 bytes);
        EXPECT_EQ(answer(library.query, L"intelauthenticate"), value);
    }
    for (const SettingsCall function : {library.query, library.set, library.env, library.diag}) {
        EXPECT_EQ(function(nullptr), E_INVALIDARG);
        EXPECT_EQ(answer(function, L"is_personalMode", 24), L"-2147024809");
        EXPECT_EQ(answer(function, nullptr), L"-2147024809");
        EXPECT_EQ(answer(function, L"is_personalmode"), L"-2147024894");
    }
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
