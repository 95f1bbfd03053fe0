#include "installation.h"
#include "resources/languagelibrary.h"
#include "resources/muimodule.h"
#include "resources/resourceids.h"
#include "resources/strings.h"

#include <map>

namespace {

constexpr osVersion_t oldSystem = {VER_PLATFORM_WIN32_NT, 5, 2};
constexpr osVersion_t currentSystem = {VER_PLATFORM_WIN32_NT, 6, 2};

// languageOf says which of the built language files a module is, by a letter of the notification's
// caption.
std::wstring languageOf(HMODULE module)
{
    const std::map<wchar_t, std::wstring> languages = {
        {L'P', L"en"}, {L'S', L"de"}, {L'\u00c9', L"fr"}, {L'\u30d1', L"ja"}, {L'\u5bc6', L"zh"}};
    std::wstring text = L"none";
    if (module)
        LoadStringFromModule(module, IDS_NOTIFICATION_CAPTION, text);
    return languages.contains(text[0]) ? languages.at(text[0]) : text;
}

} // namespace

TEST(LanguageSearch, TakesTheFileNearestToTheUser)
{
    // The languages of user and system; folders and the languages in them; what is taken on an old
    // system and on a current one.
    const std::tuple<LANGID, LANGID, const wchar_t*, std::wstring> cases[] = {
        // The neutral language goes before the default sub-language, which only an old system tries.
        {0x0807, 0x0409, L"de-DE=fr-FR de=de-DE", L"de de"},
        {0x0807, 0x0409, L"de-DE=de-DE en-US=en-US", L"de en"},
        // Traditional Chinese goes together, the Simplified one apart.
        {0x0C04, 0x0409, L"zh-Hant=zh-Hant en-US=en-US", L"zh zh"},
        {0x0C04, 0x0409, L"zh-Hant=fr-FR zh-HK=zh-Hant", L"zh zh"},
        // No file for the user: the system's language.
        {0x041D, 0x0811, L"ja=ja-JP en-US=en-US", L"ja ja"},
        // The neutral Arabic has the number that is refused, so the whole search alone finds it.
        {0x0401, 0x0409, L"ar=fr-FR en-US=en-US", L"fr fr"},
        // A file that isn't the DLL's: other magic; both checksums. One of them is enough.
        {0x0407, 0x0409, L"de-DE=de-DE+0 en-US=en-US", L"en en"},
        {0x0407, 0x0409, L"de-DE=de-DE+43+44 en-US=en-US", L"en en"},
        {0x0407, 0x0409, L"de-DE=de-DE+28 en-US=en-US", L"de de"},
    };
    for (const auto& [user, system, folders, taken] : cases) {
        const uiLanguages_t languages(user, system);
        const installation_t installation;
        std::wistringstream files(folders);
        for (std::wstring folder, language;
             std::getline(files, folder, L'=') && std::getline(files, language, L' ');)
            installation.install(folder, language);
        const CLoadedModule old(LoadMuiModule(installation.dll.get(), oldSystem));
        const CLoadedModule current(LoadMuiModule(installation.dll.get(), currentSystem));
        EXPECT_EQ(languageOf(old.get()) + L' ' + languageOf(current.get()), taken) << folders;
    }
}

TEST(LanguageSearch, GivesBackADllThatKeepsItsTextsItselfAndRefusesOneLanguage)
{
    for (const auto& version : {oldSystem, currentSystem}) {
        CLoadedModule branding(LoadLibraryW(builtFile(L"Branding.dll").c_str()));
        EXPECT_EQ(LoadMuiModule(branding.get(), version), branding.get());
        FreeLibrary(branding.get()); // one reference came with it, and no other
        branding.reset();
        EXPECT_EQ(GetModuleHandleW(L"Branding.dll"), nullptr);
    }
    const installation_t installation;
    installation.install(L"ar", L"en-US");
    installation.install(L"MUI\\0407", L"de-DE");
    const std::wstring path = installation.dllPath.wstring();
    EXPECT_EQ(LoadLanguageLibrary(path, languageFolderByName, 1), nullptr);
    const CLoadedModule german(LoadLanguageLibrary(path, languageFolderById, 0x0407));
    EXPECT_EQ(languageOf(german.get()), L"de");
}
