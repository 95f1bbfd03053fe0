#include "settingstable.h"

#include "settingsstore.h"

#include <algorithm>
#include <iterator>

namespace {

// The installer writes into one of the two views.
std::wstring bindir()
{
    for (const DWORD view : {DWORD{RRF_SUBKEY_WOW6464KEY}, DWORD{RRF_SUBKEY_WOW6432KEY}}) {
        for (const wchar_t* key :
             {LR"(SOFTWARE\Veltrano\Applications\KRS)", LR"(SOFTWARE\Veltrano\Applications)"}) {
            const auto folder = readtext(HKEY_LOCAL_MACHINE, key, L"BinDir", rawText | view);
            if (folder && !folder->empty())
                return *folder;
        }
    }
    return {};
}

std::wstring expandtext(const wchar_t* text)
{
    const std::wstring expanded = expandreferences(text);
    return expanded.starts_with(L'%') ? std::wstring() : expanded;
}

// A switch of "0" is one that nobody has set: the reader's own default holds. "-1" is the stored
// false.
constexpr SettingDef settings[] = {
    {L"path_bin_dir", nullptr, bindir},
    {L"path_localstorage_dir", LR"(%APPDATA%\Veltrano\KRS\Templates\)"},
    {L"path_cachestorage_dir", LR"(%APPDATA%\Veltrano\KRS\Cache\)"},
    {L"path_alienstorage_dirs", L""},
    {L"path_quicklink_filename", LR"(%APPDATA%\Veltrano\KRS\QuickLinks.txt)"},
    {L"path_dontpromptlist_filename", LR"(%APPDATA%\Veltrano\KRS\DontPrompt.txt)"},
    {L"path_wrgKrs_inusedir", L""},
    {L"path_wrgKrs_notinusetestdir", L""},
    {L"path_wkgKrsAdmin_dir", L""},
    {L"path_wkgKrsAdmin_inusedir", L""},
    {L"path_wkgKrsAdmin_notinusetestdir", L""},
    {L"is_personalMode", L"0"},
    {L"show_training_prompt_def", L"0"},
    {L"show_training_prompt", L"0"},
    {L"open_guard_desk_qa", L""},
    {L"useGrabbingCreds", L"0"},
    {L"intelauthenticate", L"0"},
};

} // namespace

std::span<const SettingDef> allsettings() noexcept
{
    return settings;
}

const SettingDef* findsetting(std::wstring_view key) noexcept
{
    const auto at = std::ranges::find(settings, key, &SettingDef::key);
    return at == std::end(settings) ? nullptr : at;
}

std::wstring defaulttext(const SettingDef& setting, bool expanded)
{
    if (setting.found)
        return setting.found();
    return expanded ? expandtext(setting.text) : setting.text;
}
