#include "resources/languagelibrary.h"
#include "resources/languagenames.h"
#include "resources/muimodule.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "installation.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

constexpr osVersion_t oldSystem = {VER_PLATFORM_WIN32_NT, 5, 2};
constexpr osVersion_t currentSystem = {VER_PLATFORM_WIN32_NT, 6, 2};

// languageOf tells which of the built language files a module is, by the plug-in's name in it.
std::wstring languageOf(HMODULE module)
{
    if (!module)
        return L"none";
    const std::pair<const wchar_t*, const wchar_t*> names[] = {
        {L"<<%PN%>> Password Manager", L"en"},
        {L"<<%PN%>> Passwort-Manager", L"de"},
        {L"Gestionnaire de mots de passe <<%PN%>>", L"fr"},
        {L"<<%PN%>> \u30d1\u30b9\u30ef\u30fc\u30c9 \u30de\u30cd\u30fc\u30b8\u30e3\u30fc", L"ja"},
        {L"<<%PN%>> \u5bc6\u78bc\u7ba1\u7406\u54e1", L"zh"},
    };
    std::wstring text;
    LoadStringFromModule(module, IDS_PLUGIN_NAME, text);
    for (const auto& [name, language] : names) {
        if (text == name)
            return language;
    }
    return L"unknown: " + text;
}

using files_t =
    std::vector<std::pair<std::wstring, std::wstring>>; // folder, language of the file in it

struct search_t {
    LANGID user, system;
    files_t files;
    const wchar_t* oldResult;
    const wchar_t* currentResult;
};

} // namespace

TEST(LanguageSearch, TakesTheFileNearestToTheUser)
{
    const search_t cases[] = {
        {0x0407, 0x0409, {{L"de-DE", L"de-DE"}, {L"en-US", L"en-US"}}, L"de", L"de"},
        {0x0407, 0x0409, {{L"de", L"de-DE"}, {L"en-US", L"en-US"}}, L"de", L"de"},
        // The neutral language goes before the default sub-language, which only an old system
        // tries.
        {0x0807,
         0x0409,
         {{L"de-DE", L"fr-FR"}, {L"de", L"de-DE"}, {L"en-US", L"en-US"}},
         L"de",
         L"de"},
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
        // No file for the user: the system's language, then en-US.
        {0x041D, 0x0411, {{L"ja-JP", L"ja-JP"}, {L"en-US", L"en-US"}}, L"ja", L"ja"},
        {0x041D, 0x0811, {{L"ja", L"ja-JP"}, {L"en-US", L"en-US"}}, L"ja", L"ja"},
        {0x041D, 0x041D, {{L"en-US", L"en-US"}, {L"de-DE", L"de-DE"}}, L"en", L"en"},
        {0x041D, 0x041D, {{L"en", L"en-US"}}, L"en", L"en"},
        {0x041D, 0x041D, {{L"de-DE", L"de-DE"}}, L"none", L"none"},
        // The neutral Arabic has the number that is refused, so the whole search alone finds it.
        {0x0401, 0x0409, {{L"ar", L"fr-FR"}, {L"en-US", L"en-US"}}, L"fr", L"fr"},
        {0x04FF, 0x0409, {{L"en-US", L"en-US"}}, L"en", L"en"}, // a language without a name
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.user << " row " << &c - cases);
        const uiLanguages_t languages(c.user, c.system);
        installation_t installation;
        for (const auto& [folder, language] : c.files)
            installation.install(folder, language);
        ASSERT_TRUE(installation.dll());
        const CLoadedModule old(LoadMuiModule(installation.dll(), oldSystem));
        const CLoadedModule current(LoadMuiModule(installation.dll(), currentSystem));
        EXPECT_EQ(languageOf(old.get()), c.oldResult);
        EXPECT_EQ(languageOf(current.get()), c.currentResult);
    }
}

TEST(LanguageSearch, AsksForTheFoldersInOrder)
{
    const uiLanguages_t languages(0x0C04, 0x0407);
    installation_t installation;
    ASSERT_TRUE(installation.dll());
    const std::vector<std::wstring> all = {L"zh-HK", L"zh-Hant", L"de-DE", L"de", L"en-US", L"en"};
    std::vector<std::wstring> expected = {L"zh-HK", L"zh-Hant", L"zh-TW"};
    expected.insert(expected.end(), all.begin(),
                    all.end()); // the whole search for the first language,
    expected.insert(expected.end(), {L"en-US", L"en"});
    expected.insert(expected.end(), all.begin(), all.end()); // for the second one,
    expected.insert(expected.end(), all.begin(), all.end()); // and at the end of the list
    const openedFiles_t opened;
    EXPECT_EQ(LoadMuiModule(installation.dll(), oldSystem), nullptr);
    EXPECT_EQ(opened.folders(), expected);
}

TEST(LanguageSearch, GivesBackADllThatKeepsItsTextsItself)
{
    for (const auto& version : {oldSystem, currentSystem}) {
        CLoadedModule branding(LoadLibraryW(builtFile(L"Branding.dll").c_str()));
        ASSERT_TRUE(branding);
        const HMODULE found = LoadMuiModule(branding.get(), version);
        EXPECT_EQ(found, branding.get());
        FreeLibrary(found); // one reference came with it, and no other
        EXPECT_EQ(GetModuleHandleW(L"Branding.dll"), branding.get());
        branding.reset();
        EXPECT_EQ(GetModuleHandleW(L"Branding.dll"), nullptr);
    }
}

TEST(LanguageSearch, FailsForADllWithoutAFile)
{
    const uiLanguages_t languages(0x0409);
    installation_t installation;
    installation.install(L"en-US", L"en-US");
    installation.install(L"ar", L"en-US");
    const std::wstring path = installation.dllPath().wstring();
    EXPECT_EQ(LoadLanguageLibrary(path, languageFolderByName, 1), nullptr);
    EXPECT_EQ(LoadLanguageLibrary(path + L"x", languageFolderByName, 0), nullptr);
    EXPECT_EQ(LoadLanguageLibrary(L"", languageFolderByName, 0), nullptr);
    const CLoadedModule named(LoadLanguageLibrary(path, languageFolderByName, 0x0409));
    EXPECT_EQ(languageOf(named.get()), L"en");
}

TEST(LanguageSearch, FindsFoldersByNumberAndBesideTheCurrentFolder)
{
    installation_t installation;
    installation.install(L"MUI\\0407", L"de-DE");
    installation.install(L"fr-FR", L"fr-FR");
    const CLoadedModule byNumber(
        LoadLanguageLibrary(installation.dllPath().wstring(), languageFolderById, 0x0407));
    EXPECT_EQ(languageOf(byNumber.get()), L"de");

    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(installation.dllPath().parent_path());
    const CLoadedModule beside(
        LoadLanguageLibrary(L"VLOnlineIDs.dll", languageFolderByName, 0x040C));
    std::filesystem::current_path(before);
    EXPECT_EQ(languageOf(beside.get()), L"fr");
}

// The built German file, changed in one place: the search takes it or goes on to the English one.
TEST(LanguageFile, IsPassedOverIfItIsNotTheDlls)
{
    const uiLanguages_t languages(0x0407);
    const std::vector<uint8_t> built = readFile(builtFile(L"de-DE/VLOnlineIDs.dll.mui"));
    const uint8_t magic[] = {0xCD, 0xFE, 0xCD, 0xFE};
    const auto found = std::ranges::search(built, magic).begin();
    ASSERT_NE(found, built.end());
    const size_t mui = static_cast<size_t>(found - built.begin());
    const auto changed = [&](std::vector<size_t> offsets) {
        std::vector<uint8_t> file = built;
        for (const size_t offset : offsets)
            file.at(mui + offset) ^= 0xFF;
        return file;
    };
    const auto cut = [&](size_t size) {
        return std::vector<uint8_t>(built.begin(), built.begin() + static_cast<ptrdiff_t>(size));
    };
    const struct {
        const char* what;
        std::vector<uint8_t> file;
        const wchar_t* taken;
    } cases[] = {
        {"as built", built, L"de"},
        {"magic", changed({0}), L"en"},
        {"first checksum", changed({28}), L"de"},
        {"second checksum", changed({44 + 15}), L"de"},
        {"both checksums", changed({28 + 15, 44}), L"en"},
        {"data behind the checksums", changed({60, 131}), L"de"},
        {"empty", {}, L"en"},
        {"headers alone", cut(0x200), L"en"},
        {"half", cut(built.size() / 2), L"en"},
        {"up to the data", cut(mui), L"en"},
        {"no PE file", std::vector<uint8_t>(9000, 'x'), L"en"},
        {"another library", readFile(builtFile(L"Branding.dll")), L"en"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        installation_t installation;
        writeFile(installation.install(L"de-DE", L"de-DE"), c.file);
        installation.install(L"en-US", L"en-US");
        const CLoadedModule old(LoadMuiModule(installation.dll(), oldSystem));
        EXPECT_EQ(languageOf(old.get()), c.taken);
    }
}

TEST(LanguageFile, EachHasEveryString)
{
    const int ids[] = {1026, 1029, 1031, 1041, 1052, 1053, 1054};
    for (const wchar_t* language : {L"en-US", L"de-DE", L"fr-FR", L"ja-JP", L"zh-Hant"}) {
        const CLoadedModule file(
            LoadLibraryExW(builtFile(std::wstring(language) + L"/VLOnlineIDs.dll.mui").c_str(),
                           nullptr, LOAD_LIBRARY_AS_DATAFILE));
        ASSERT_TRUE(file) << language;
        for (const int id : ids) {
            std::wstring text;
            const int length = LoadStringFromModule(file.get(), static_cast<UINT>(id), text);
            EXPECT_GT(length, 5) << language << id;
            EXPECT_EQ(static_cast<size_t>(length), text.size());
            EXPECT_EQ(text.find(L'?'), std::wstring::npos)
                << "characters lost in " << language << id;
        }
        EXPECT_TRUE(FindResourceW(file.get(), L"QLINKLOAD.HTM", MAKEINTRESOURCEW(23)));
    }
}

TEST(DllResources, AreAllThereButNoStrings)
{
    installation_t installation;
    const struct {
        const wchar_t* name;
        const wchar_t* type;
        bool there;
    } cases[] = {
        {MAKEINTRESOURCEW(IDI_PLUGIN), MAKEINTRESOURCEW(14), true},
        {MAKEINTRESOURCEW(IDB_PLUGIN_SMALL), MAKEINTRESOURCEW(2), true},
        {MAKEINTRESOURCEW(IDB_PLUGIN_LARGE), MAKEINTRESOURCEW(2), true},
        {MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16), true},
        {L"QLINKLOAD.HTM", MAKEINTRESOURCEW(23), true},
        {MAKEINTRESOURCEW(1), L"MUI", true},
        {MAKEINTRESOURCEW(65), MAKEINTRESOURCEW(6), false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FindResourceW(installation.dll(), c.name, c.type) != nullptr, c.there)
            << &c - cases;
    for (const int size : {16, 32, 48, 256}) {
        const HANDLE icon =
            LoadImageW(installation.dll(), MAKEINTRESOURCEW(IDI_PLUGIN), IMAGE_ICON, size, size, 0);
        EXPECT_TRUE(icon) << size;
        DestroyIcon(static_cast<HICON>(icon));
    }
}

TEST(LanguageNames, AgreeWithTheSystemsOwn)
{
    int named = 0;
    for (unsigned id = 1; id <= 0xFFFF; ++id) {
        const std::wstring_view name = languageName(static_cast<LANGID>(id));
        if (name.empty())
            continue;
        ++named;
        wchar_t system[LOCALE_NAME_MAX_LENGTH] = {};
        LCIDToLocaleName(id, system, LOCALE_NAME_MAX_LENGTH, LOCALE_ALLOW_NEUTRAL_NAMES);
        EXPECT_EQ(name, system) << std::hex << id;
    }
    EXPECT_GE(named, 327);
    EXPECT_EQ(languageName(0x7C04), L"zh-Hant");
    EXPECT_EQ(languageName(9), L"en");
    EXPECT_TRUE(languageName(0).empty() && languageName(0xFFFF).empty() &&
                languageName(0x04FF).empty());
}
