#include "surroundings.h"

#include "storage/settings.h"

using VloSet = Surroundings;

TEST_F(VloSet, AnswersItsKeysAndKeepsWhatIsSet)
{
    const std::wstring program = moduleFileName(nullptr); // the library lies beside it
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", program.substr(0, program.rfind(L'\\')));
    const std::wstring stored = LR"(SOFTWARE\Veltrano\Settings)", large(5000, L'l');
    setValue(HKEY_CURRENT_USER, stored, L"path_alienstorage_dirs", L"%APPDATA%|x", REG_EXPAND_SZ);
    setValue(HKEY_CURRENT_USER, stored, L"path_wrgKrs_inusedir", large);
    setValue(HKEY_CURRENT_USER, stored, L"useGrabbingCreds", L"1", REG_BINARY); // no text
    IN_FRESH_PROCESS({
        // Handlers run last in, first out: this one sees what the settings link's own has done.
        std::atexit([] { _exit(GetModuleHandleW(L"VloSet.dll") ? 3 : HasFailure()); });
        EXPECT_EQ(settings_set(L"is_personalmode", L"1"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        EXPECT_EQ(settings_set(L"open_guard_desk_qa", L"Alt+\u00E4 %APPDATA%"), S_OK);
        const std::pair<const wchar_t*, std::wstring> cases[] = {
            {L"path_cachestorage_dir", LR"(C:\A\R\Veltrano\KRS\Cache\)"},
            {L"path_alienstorage_dirs", LR"(C:\A\R|x)"},
            {L"open_guard_desk_qa", L"Alt+\u00E4 %APPDATA%"},
            {L"path_wrgKrs_inusedir", large},
            {L"useGrabbingCreds", L"0"},
            {L"is_personalmode", L"none"}};
        for (const auto& [key, value] : cases)
            EXPECT_EQ(settings_getstring(key, L"none"), value);
    });
}
