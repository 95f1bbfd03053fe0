#include "common/text.h"
#include "installation.h"
#include "resources/languagenames.h"
#include "resources/resourceids.h"
#include "resources/strings.h"
#include "tracecore/tracer.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <tuple>

// The DLL and its language files as they are shipped, read back whole.

namespace {

constexpr wchar_t page[] = L"QLINKLOAD.HTM";
const std::wstring dllName = L"VLOnlineIDs.dll";

std::string resourceBytes(const CLoadedModule& module, WORD type, const wchar_t* name)
{
    const auto typeName = type ? MAKEINTRESOURCEW(type) : L"MUI";
    const HRSRC found = FindResourceW(module.get(), name, typeName);
    const HGLOBAL loaded = LoadResource(module.get(), found);
    const auto* const bytes = static_cast<const char*>(LockResource(loaded));
    return bytes ? std::string(bytes, SizeofResource(module.get(), found)) : std::string();
}

std::string numbers(std::initializer_list<size_t> list)
{
    std::string bytes;
    for (const size_t number : list)
        for (unsigned shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string textBytes(const std::wstring& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

// configuration is the resource of type "MUI" of the DLL, or of the file of a language: 28 bytes of
// head, two checksums, and eight parts, each by its place, a multiple of 8, and its size.
std::string configuration(bool isDll, const std::wstring& language, const std::string& checksums)
{
    const std::string names = textBytes({L"MUI\0\0", 5});
    const std::string parts[] = {"",
                                 "",
                                 names,
                                 numbers({2, 3, 14, 16, 23}),
                                 names,
                                 numbers({4, 5, 6, 16, 23}),
                                 isDll ? "" : textBytes(language + L'\0'),
                                 isDll ? textBytes({L"en-US\0", 6}) : ""};
    constexpr size_t start = 132;
    std::string body(4, '\0'), places;
    for (const std::string& part : parts) {
        places += numbers({part.empty() ? 0 : start + body.size(), part.size()});
        body += part + std::string((8 - part.size() % 8) % 8, '\0');
    }
    return numbers({0xFECDFECD, start + body.size(), 0x10000, 0, isDll ? 0x11u : 0x12u, 0,
                    isDll ? 2u : 0u}) +
           checksums + std::string(8, '\0') + places + body;
}

} // namespace

TEST(LanguageNames, AreThePlatformsAndLeadToANeutralParent)
{
    // Newer releases of the platform have other names of these, or none.
    const std::set<unsigned> changed = {102, 113, 121, 1111, 1126, 1137};
    for (unsigned id = 1; id <= 0xFFFF; ++id) {
        const auto language = static_cast<LANGID>(id);
        wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
        if (PRIMARYLANGID(language) != LANG_NEUTRAL)
            LCIDToLocaleName(language, name, LOCALE_NAME_MAX_LENGTH, LOCALE_ALLOW_NEUTRAL_NAMES);
        ASSERT_TRUE(languageName(language) == name || changed.contains(id)) << id;
        if (languageName(language).empty())
            continue;
        const LANGID parent = neutralLanguage(language);
        ASSERT_FALSE(languageName(parent).empty()) << id;
        ASSERT_EQ(neutralLanguage(parent), parent) << id;
        const bool traditional = id == 1028 || id == 3076 || id == 5124 || id == 31748;
        ASSERT_EQ(parent, traditional ? 31748 : id & 0x3FF);
    }
}

TEST(Shipped, EachFileHasWhatTheConfigurationSaysAndTheTextsAreWhole)
{
    const CLoadedModule english = loadAsData(builtFile(L"en-US/VLOnlineIDs.dll.mui"));
    const CLoadedModule dll = loadAsData(builtFile(dllName));
    const std::string checksums = resourceBytes(dll, 0, MAKEINTRESOURCEW(1)).substr(28, 32);
    EXPECT_EQ(checksums.find(std::string(16, '\0')), std::string::npos);

    std::wistringstream languages(dllName + L' ' + VL_LANGUAGES);
    for (std::wstring language; languages >> language;) {
        SCOPED_TRACE(utf8FromWide(language));
        const bool main = language == dllName;
        const fs::path path = builtFile(main ? dllName : language + L'/' + dllName + L".mui");
        const CLoadedModule file = loadAsData(path);
        EXPECT_EQ(resourceBytes(file, 0, MAKEINTRESOURCEW(1)),
                  configuration(main, language, checksums));
        std::string version = resourceBytes(file, 16, MAKEINTRESOURCEW(1));
        ASSERT_GT(version.size(), 56u);
        WORD number[4]; // of the file, which the texts repeat
        std::memcpy(number, version.data() + 48, sizeof number);
        EXPECT_EQ(tracecore::formatWide(L"%d.%d.%d", number[1], number[0], number[3]), VL_VERSION);
        std::erase(version, '\0');
        for (const std::wstring& text :
             {std::wstring(L"FileVersion" VL_VERSION), std::wstring(L"ProductVersion" VL_VERSION),
              L"OriginalFilename" + dllName})
            EXPECT_NE(version.find(utf8FromWide(text)), std::string::npos) << utf8FromWide(text);
        EXPECT_NE(resourceBytes(file, 23, page)
                      .find("lang=\"" + (main ? "en-US" : fs::path(language).string()) + '"'),
                  std::string::npos);

        int untranslated = 0;
        for (const UINT id : {1026u, 1029u, 1031u, 1041u, 1052u, 1053u, 1054u}) {
            SCOPED_TRACE(id);
            std::wstring text, original;
            EXPECT_GT(LoadStringFromModule(english.get(), id, original), 5);
            EXPECT_EQ(LoadStringFromModule(file.get(), id, text) > 1, !main);
            if (main)
                continue;
            EXPECT_EQ(text.find_first_of(L"?\uFFFD"), std::wstring::npos);
            for (const wchar_t sign : {L'<', L'%', L'>'}) // those of the markers
                EXPECT_EQ(std::ranges::count(text, sign), std::ranges::count(original, sign));
            untranslated += text == original;
        }
        EXPECT_LE(untranslated, language == L"en-US" ? 7 : 2); // a name may stay
    }
}

TEST(Shipped, ThePictureComesInEverySize)
{
    const CLoadedModule dll = loadAsData(builtFile(dllName));
    std::string group = resourceBytes(dll, 14, MAKEINTRESOURCEW(IDI_PLUGIN));
    const auto sizeOf = [&](WORD type, int id) {
        const std::string image = resourceBytes(dll, type, MAKEINTRESOURCEW(id));
        BITMAPINFOHEADER header{};
        std::memcpy(&header, image.data(), std::min(image.size(), sizeof header));
        return image.starts_with("\x89PNG")
                   ? std::tuple(256L, 512L, 32)
                   : std::tuple(header.biWidth, header.biHeight, int{header.biBitCount});
    };
    for (const int side : {16, 20, 24, 32, 40, 48, 64, 128, 256}) // a picture and its mask
        EXPECT_EQ(sizeOf(3, LookupIconIdFromDirectoryEx(reinterpret_cast<BYTE*>(group.data()), TRUE,
                                                        side, side, 0)),
                  std::tuple(side, 2 * side, 32));
    EXPECT_EQ(sizeOf(2, IDB_PLUGIN_SMALL), std::tuple(16, 16, 32));
    EXPECT_EQ(sizeOf(2, IDB_PLUGIN_LARGE), std::tuple(32, 32, 32));
}
