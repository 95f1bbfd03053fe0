#include "installation.h"
#include "resources/languagenames.h"
#include "resources/resourceids.h"
#include "resources/strings.h"

#include <algorithm>
#include <cstring>
#include <set>

// The DLL and its language files as they are shipped, read back whole.

namespace {

using types_t = std::set<std::wstring>; // names, and numbers as text

constexpr wchar_t page[] = L"QLINKLOAD.HTM";
const std::wstring dllName = L"VLOnlineIDs.dll";

std::wstring typeText(const wchar_t* type)
{
    return IS_INTRESOURCE(type) ? std::to_wstring(reinterpret_cast<uintptr_t>(type)) : type;
}

types_t typesIn(HMODULE module)
{
    types_t found;
    EnumResourceTypesW(
        module,
        +[](HMODULE, LPWSTR type, LONG_PTR into) -> BOOL {
            return reinterpret_cast<types_t*>(into)->insert(typeText(type)).second;
        },
        reinterpret_cast<LONG_PTR>(&found));
    return found;
}

std::string resourceBytes(HMODULE module, const wchar_t* type, const wchar_t* name)
{
    const HRSRC found = FindResourceW(module, name, type);
    const auto* const bytes = static_cast<const char*>(LockResource(LoadResource(module, found)));
    return bytes ? std::string(bytes, SizeofResource(module, found)) : std::string();
}

// configuration_t is the resource of type "MUI": 28 bytes of head, two checksums, eight parts.
struct configuration_t {
    explicit configuration_t(HMODULE module)
        : bytes(resourceBytes(module, L"MUI", MAKEINTRESOURCEW(1)))
    {
        bytes.resize(std::max<size_t>(bytes.size(), 132));
    }
    uint32_t number(size_t offset) const
    {
        uint32_t value = 0;
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return value;
    }
    std::string part(size_t index) const
    {
        const uint32_t offset = number(68 + 8 * index), length = number(72 + 8 * index);
        EXPECT_TRUE(offset % 8 == 0 && offset <= bytes.size() && length <= bytes.size() - offset);
        return length ? bytes.substr(offset, length) : "";
    }
    std::wstring text(size_t index) const
    {
        const std::string part = this->part(index);
        std::wstring text(part.size() / 2, L'\0');
        std::memcpy(text.data(), part.data(), part.size());
        return text;
    }
    types_t types(size_t names, size_t numbers) const
    {
        types_t types;
        std::wistringstream list(text(names));
        for (std::wstring name; std::getline(list, name, L'\0') && !name.empty();)
            types.insert(name);
        const std::string ids = part(numbers);
        for (size_t at = 0; at + 4 <= ids.size(); at += 4)
            types.insert(std::to_wstring(static_cast<uint8_t>(ids[at])));
        return types;
    }
    std::string bytes;
};

// versionText is one text of a file's version information, in the file's first language, after the
// number of the file's version.
std::wstring versionText(const fs::path& file, const wchar_t* name)
{
    std::string block(GetFileVersionInfoSizeW(file.c_str(), nullptr), '\0');
    GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data());
    UINT length = 0;
    const auto query = [&](const std::wstring& path) -> const void* {
        void* found = nullptr;
        return VerQueryValueW(block.data(), path.c_str(), &found, &length) ? found : nullptr;
    };
    const auto* const number = static_cast<const VS_FIXEDFILEINFO*>(query(L"\\"));
    const auto* const language = static_cast<const WORD*>(query(L"\\VarFileInfo\\Translation"));
    if (!number || !language)
        return L"none";
    wchar_t path[64], version[64];
    _snwprintf(path, 64, L"\\StringFileInfo\\%04x%04x\\%ls", language[0], language[1], name);
    _snwprintf(version, 64, L"%d.%d.%d ", HIWORD(number->dwFileVersionMS),
               LOWORD(number->dwFileVersionMS), HIWORD(number->dwFileVersionLS));
    const auto* const text = static_cast<const wchar_t*>(query(path));
    return version + std::wstring(text ? text : L"none");
}

size_t markers(const std::wstring& text)
{
    size_t count = 0;
    for (size_t at = 0; (at = text.find(L"<<%PN%>>", at)) != std::wstring::npos; ++at)
        ++count;
    return count;
}

} // namespace

TEST(LanguageNames, AreThePlatformsAndLeadToANeutralParent)
{
    for (unsigned id = 1; id <= 0xFFFF; ++id) {
        const auto language = static_cast<LANGID>(id);
        wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
        if (PRIMARYLANGID(language) != LANG_NEUTRAL)
            LCIDToLocaleName(language, name, LOCALE_NAME_MAX_LENGTH, LOCALE_ALLOW_NEUTRAL_NAMES);
        ASSERT_EQ(languageName(language), name) << id;
        if (!*name)
            continue;
        const LANGID parent = neutralLanguage(language);
        ASSERT_FALSE(languageName(parent).empty()) << id;
        ASSERT_EQ(neutralLanguage(parent), parent) << id;
        const bool traditional = std::set<unsigned>{1028, 3076, 5124, 31748}.contains(id);
        ASSERT_EQ(parent, traditional ? 31748 : id & 0x3FF);
    }
}

TEST(Shipped, EachFileHasWhatTheConfigurationSaysAndTheTextsAreWhole)
{
    const types_t ofDll{L"2", L"3", L"14", L"16", L"23", L"MUI"};
    const types_t ofLanguage{L"4", L"5", L"6", L"16", L"23", L"MUI"};
    const CLoadedModule english = loadAsData(builtFile(L"en-US/VLOnlineIDs.dll.mui"));
    const CLoadedModule dll = loadAsData(builtFile(dllName));
    const configuration_t expected(dll.get());
    EXPECT_EQ(typesIn(dll.get()), ofDll);
    EXPECT_EQ(versionText(builtFile(dllName), L"OriginalFilename"), VL_VERSION L" " + dllName);
    EXPECT_NE(resourceBytes(dll.get(), MAKEINTRESOURCEW(23), page)
                  .find("<title>The web browser is opening the logon</title>"),
              std::string::npos);

    std::wistringstream languages(dllName + L' ' + VL_LANGUAGES);
    for (std::wstring language; languages >> language;) {
        SCOPED_TRACE(fs::path(language).string());
        const bool main = language == dllName;
        const fs::path path = builtFile(main ? dllName : language + L'/' + dllName + L".mui");
        const CLoadedModule file = loadAsData(path);
        const configuration_t configuration(file.get());
        EXPECT_EQ(configuration.number(0), 0xFECDFECD);
        EXPECT_EQ(configuration.number(4), configuration.bytes.size());
        EXPECT_EQ(configuration.number(8), 0x10000u);
        EXPECT_EQ(configuration.number(16), main ? 0x11u : 0x12u);
        for (const size_t checksum : {28u, 44u}) {
            EXPECT_EQ(configuration.bytes.substr(checksum, 16),
                      expected.bytes.substr(checksum, 16));
            EXPECT_NE(configuration.bytes.substr(checksum, 16), std::string(16, '\0'));
        }
        EXPECT_EQ(configuration.types(2, 3), ofDll);
        EXPECT_EQ(configuration.types(4, 5), ofLanguage);
        EXPECT_EQ(configuration.text(6), main ? std::wstring() : language + L'\0');
        EXPECT_EQ(configuration.text(7), main ? std::wstring(L"en-US\0", 6) : L"");
        EXPECT_EQ(versionText(path, L"FileVersion"), VL_VERSION L" " VL_VERSION);
        EXPECT_EQ(versionText(path, L"ProductVersion"), VL_VERSION L" " VL_VERSION);
        EXPECT_NE(resourceBytes(file.get(), MAKEINTRESOURCEW(23), page)
                      .find("lang=\"" + (main ? "en-US" : fs::path(language).string()) + '"'),
                  std::string::npos);

        int untranslated = 0;
        for (const UINT id : {1026u, 1029u, 1031u, 1041u, 1052u, 1053u, 1054u}) {
            std::wstring text, original;
            EXPECT_GT(LoadStringFromModule(english.get(), id, original), 5) << id;
            EXPECT_EQ(LoadStringFromModule(file.get(), id, text) > 1, !main) << id;
            EXPECT_EQ(text.find_first_of(L"?\uFFFD"), std::wstring::npos) << id;
            if (main)
                continue;
            EXPECT_EQ(markers(text), markers(original)) << id;
            EXPECT_EQ(std::ranges::count(text, L'%'), std::ranges::count(original, L'%')) << id;
            untranslated += text == original;
        }
        EXPECT_LE(untranslated, language == L"en-US" ? 7 : 2); // a name may stay
        for (const std::wstring& type : typesIn(file.get()))
            EXPECT_TRUE((main ? ofDll : ofLanguage).contains(type)) << fs::path(type).string();
    }
}

TEST(Shipped, ThePictureComesInEverySize)
{
    const CLoadedModule dll = loadAsData(builtFile(dllName));
    const std::string group =
        resourceBytes(dll.get(), MAKEINTRESOURCEW(14), MAKEINTRESOURCEW(IDI_PLUGIN));
    std::set<uint8_t> sides; // 0 is 256
    for (size_t at = 6; at + 14 <= group.size(); at += 14) {
        const auto* const entry = reinterpret_cast<const uint8_t*>(group.data()) + at;
        const std::string image =
            resourceBytes(dll.get(), MAKEINTRESOURCEW(3), MAKEINTRESOURCEW(entry[12]));
        SCOPED_TRACE(entry[0]);
        EXPECT_TRUE(sides.insert(entry[0]).second && entry[0] == entry[1]);
        EXPECT_EQ(entry[6], 32); // bits
        EXPECT_EQ(entry[8] | entry[9] << 8 | entry[10] << 16, static_cast<int>(image.size()));
        EXPECT_EQ(image.substr(0, 4), entry[0] ? std::string("\x28\0\0\0", 4) : "\x89PNG");
    }
    EXPECT_EQ(sides.size(), 9u);
    for (const auto& [id, side] :
         {std::pair(IDB_PLUGIN_SMALL, 16), std::pair(IDB_PLUGIN_LARGE, 32)}) {
        BITMAP bitmap{};
        const HANDLE picture =
            LoadImageW(dll.get(), MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
        GetObjectW(picture, sizeof bitmap, &bitmap);
        EXPECT_EQ(bitmap.bmWidth * 1000 + bitmap.bmHeight, side * 1001);
        EXPECT_EQ(bitmap.bmBitsPixel, 32);
        DeleteObject(picture);
    }
}
