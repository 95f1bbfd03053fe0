#include "resources/languagelibrary.h"
#include "resources/languagenames.h"
#include "resources/muimodule.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "installation.h"

#include <algorithm>

namespace {

constexpr osVersion_t oldSystem = {VER_PLATFORM_WIN32_NT, 5, 2};
constexpr osVersion_t currentSystem = {VER_PLATFORM_WIN32_NT, 6, 2};

// languageOf tells which of the built language files a module is, by a letter of the notification's caption.
std::wstring languageOf(HMODULE module)
{
    if (!module)
        return L"none";
    std::wstring text;
    LoadStringFromModule(module, IDS_NOTIFICATION_CAPTION, text);
    switch (text.empty() ? L' ' : text[0]) {
    case L'P':
        return L"en";
    case L'S':
        return L"de";
    case L'\u00c9':
        return L"fr";
    case L'\u30d1':
        return L"ja";
    case L'\u5bc6':
        return L"zh";
    default:
        return L"unknown: " + text;
    }
}

} // namespace

TEST(LanguageSearch, TakesTheFileNearestToTheUser)
{
    const struct {
        LANGID user, system;
        std::vector<std::pair<std::wstring, std::wstring>> files; // folder, language in it
        const wchar_t* oldResult;
        const wchar_t* currentResult;
    } cases[] = {
        {0x0407, 0x0409, {{L"de-DE", L"de-DE"}, {L"en-US", L"en-US"}}, L"de", L"de"},
        // The neutral language goes before the default sub-language, which only an old system tries.
        {0x0807, 0x0409, {{L"de-DE", L"fr-FR"}, {L"de", L"de-DE"}}, L"de", L"de"},
        {0x0807, 0x0409, {{L"de-DE", L"de-DE"}, {L"en-US", L"en-US"}}, L"de", L"en"},
        // Traditional Chinese goes together, the Simplified one apart.
        {0x0404, 0x0409, {{L"zh-Hant", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"zh", L"zh"},
        {0x0C04, 0x0409, {{L"zh-Hant", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"zh", L"zh"},
        {0x1404, 0x0409, {{L"zh-Hant", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"zh", L"zh"},
        {0x7C04, 0x0409, {{L"zh-Hant", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"zh", L"zh"},
        {0x0C04, 0x0409, {{L"zh-Hant", L"fr-FR"}, {L"zh-HK", L"zh-Hant"}}, L"zh", L"zh"},
        {0x0C04, 0x0409, {{L"zh-TW", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"zh", L"en"},
        {0x0804, 0x0409, {{L"zh-Hant", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"en", L"en"},
        {0x0C04, 0x0409, {{L"zh-Hans", L"zh-Hant"}, {L"en-US", L"en-US"}}, L"en", L"en"},
        // No file for the user: the system's language, then en-US, then nothing.
        {0x041D, 0x0411, {{L"ja-JP", L"ja-JP"}, {L"en-US", L"en-US"}}, L"ja", L"ja"},
        {0x041D, 0x0811, {{L"ja", L"ja-JP"}, {L"en-US", L"en-US"}}, L"ja", L"ja"},
        {0x041D, 0x041D, {{L"en", L"en-US"}, {L"de-DE", L"de-DE"}}, L"en", L"en"},
        {0x041D, 0x041D, {{L"de-DE", L"de-DE"}}, L"none", L"none"},
        // The neutral Arabic has the number that is refused, so the whole search alone finds it.
        {0x0401, 0x0409, {{L"ar", L"fr-FR"}, {L"en-US", L"en-US"}}, L"fr", L"fr"},
        {0x04FF, 0x0409, {{L"en-US", L"en-US"}}, L"en", L"en"}, // a language without a name
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.user << " row " << &c - cases);
        const uiLanguages_t languages(c.user, c.system);
        const installation_t installation;
        for (const auto& [folder, language] : c.files)
            installation.install(folder, language);
        const CLoadedModule old(LoadMuiModule(installation.dll.get(), oldSystem));
        const CLoadedModule current(LoadMuiModule(installation.dll.get(), currentSystem));
        EXPECT_EQ(languageOf(old.get()), c.oldResult);
        EXPECT_EQ(languageOf(current.get()), c.currentResult);
    }
}

TEST(LanguageSearch, GivesBackADllThatKeepsItsTextsItself)
{
    for (const auto& version : {oldSystem, currentSystem}) {
        CLoadedModule branding(LoadLibraryW(builtFile(L"Branding.dll").c_str()));
        const HMODULE found = LoadMuiModule(branding.get(), version);
        EXPECT_EQ(found, branding.get());
        FreeLibrary(found); // one reference came with it, and no other
        EXPECT_EQ(GetModuleHandleW(L"Branding.dll"), branding.get());
        branding.reset();
        EXPECT_EQ(GetModuleHandleW(L"Branding.dll"), nullptr);
    }
}

TEST(LanguageSearch, LoadsOneLanguageByNameOrNumberAndRefusesOne)
{
    const installation_t installation;
    installation.install(L"ar", L"en-US");
    installation.install(L"MUI\\0407", L"de-DE");
    const std::wstring path = installation.dllPath().wstring();
    EXPECT_EQ(LoadLanguageLibrary(path, languageFolderByName, 1), nullptr);
    EXPECT_EQ(LoadLanguageLibrary(path, languageFolderByName, 0x0407), nullptr);
    EXPECT_EQ(LoadLanguageLibrary(path + L"x", languageFolderByName, 0), nullptr);
    const CLoadedModule byNumber(LoadLanguageLibrary(path, languageFolderById, 0x0407));
    EXPECT_EQ(languageOf(byNumber.get()), L"de");
}

// The built German file, changed in one place: the search takes it or goes on to the English one.
TEST(LanguageFile, IsPassedOverIfItIsNotTheDlls)
{
    const uiLanguages_t languages(0x0407);
    const std::string built = fileContents(builtFile(L"de-DE/VLOnlineIDs.dll.mui"));
    const size_t mui = built.find("\xCD\xFE\xCD\xFE");
    ASSERT_NE(mui, std::string::npos);
    const struct {
        const char* what;
        size_t size;                 // cut to it
        std::vector<size_t> changed; // offsets in the configuration data
        const wchar_t* taken;
    } cases[] = {
        {"as built", built.size(), {}, L"de"},
        {"magic", built.size(), {0}, L"en"},
        {"first checksum", built.size(), {28}, L"de"},
        {"second checksum", built.size(), {44 + 15}, L"de"},
        {"both checksums", built.size(), {28 + 15, 44}, L"en"},
        {"empty", 0, {}, L"en"},
        {"headers alone", 0x200, {}, L"en"},
        {"up to the data", mui, {}, L"en"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const installation_t installation;
        std::string file = built.substr(0, c.size);
        for (const size_t offset : c.changed)
            file[mui + offset] = static_cast<char>(~file[mui + offset]);
        std::ofstream(installation.install(L"de-DE", L"de-DE"), std::ios::binary) << file;
        installation.install(L"en-US", L"en-US");
        const CLoadedModule old(LoadMuiModule(installation.dll.get(), oldSystem));
        EXPECT_EQ(languageOf(old.get()), c.taken);
    }
}

TEST(LanguageFile, EachHasEveryStringAndTheDllHasNone)
{
    const installation_t installation;
    for (const wchar_t* language : {L"en-US", L"de-DE", L"fr-FR", L"ja-JP", L"zh-Hant"}) {
        const CLoadedModule file(LoadLibraryExW(installation.install(language, language).c_str(),
                                                nullptr, LOAD_LIBRARY_AS_DATAFILE));
        for (const UINT id : {1026u, 1029u, 1031u, 1041u, 1052u, 1053u, 1054u}) {
            std::wstring text;
            EXPECT_GT(LoadStringFromModule(file.get(), id, text), 5) << language << id;
            EXPECT_EQ(text.find(L'?'), std::wstring::npos) << "characters lost: " << language << id;
            EXPECT_EQ(LoadStringFromModule(installation.dll.get(), id, text), 0);
        }
    }
    for (const int size : {16, 48, 256}) {
        const HANDLE icon = LoadImageW(installation.dll.get(), MAKEINTRESOURCEW(IDI_PLUGIN),
                                       IMAGE_ICON, size, size, 0);
        EXPECT_TRUE(icon) << size;
        DestroyIcon(static_cast<HICON>(icon));
    }
}

TEST(LanguageNames, AgreeWithTheSystemsOwn)
{
    int named = 0;
    for (unsigned id = 1; id <= 0xFFFF; ++id) {
        wchar_t system[LOCALE_NAME_MAX_LENGTH] = {};
        const std::wstring_view name = languageName(static_cast<LANGID>(id));
        if (name.empty())
            continue;
        ++named;
        LCIDToLocaleName(id, system, LOCALE_NAME_MAX_LENGTH, LOCALE_ALLOW_NEUTRAL_NAMES);
        EXPECT_EQ(name, system) << std::hex << id;
    }
    EXPECT_GE(named, 327);
}
