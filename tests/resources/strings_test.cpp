#include "resources/strings.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"
#include "installation.h"

#include <gtest/gtest.h>

namespace {

// resourceFile_t is a copy of the branding DLL with string blocks of a test's own, loaded as a data
// file.
class resourceFile_t
{
public:
    struct block_t {
        WORD number, language;
        std::wstring entries; // with their lengths
    };

    explicit resourceFile_t(const std::vector<block_t>& blocks)
        : m_path(m_place.dllPath().replace_filename(L"s.dll"))
    {
        std::filesystem::copy_file(builtFile(L"Branding.dll"), m_path);
        const HANDLE update = BeginUpdateResourceW(m_path.c_str(), FALSE);
        for (block_t block : blocks)
            EXPECT_TRUE(UpdateResourceW(update, MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(block.number),
                                        block.language, block.entries.data(),
                                        static_cast<DWORD>(block.entries.size() * 2)));
        EXPECT_TRUE(EndUpdateResourceW(update, FALSE));
        m_module.reset(LoadLibraryExW(m_path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        EXPECT_TRUE(m_module);
    }

    HMODULE get() const { return m_module.get(); }

private:
    installation_t m_place;
    std::filesystem::path m_path;
    CLoadedModule m_module;
};

// entries builds a block from texts; those that follow are empty.
std::wstring entries(const std::vector<std::wstring>& texts)
{
    std::wstring block;
    for (size_t i = 0; i < 16; ++i) {
        const std::wstring text = i < texts.size() ? texts[i] : std::wstring();
        block += static_cast<wchar_t>(text.size());
        block += text;
    }
    return block;
}

struct lookUp_t {
    bool ex;
    uintptr_t type, name;
    WORD language;
    bool operator==(const lookUp_t&) const = default;
};
std::vector<lookUp_t> lookUps;
std::wstring productName;
decltype(&LoadStringW) loadString;

HRSRC WINAPI noResourceEx(HMODULE, LPCWSTR type, LPCWSTR name, WORD language)
{
    lookUps.push_back(
        {true, reinterpret_cast<uintptr_t>(type), reinterpret_cast<uintptr_t>(name), language});
    return nullptr;
}

HRSRC WINAPI noResource(HMODULE, LPCWSTR name, LPCWSTR type)
{
    lookUps.push_back(
        {false, reinterpret_cast<uintptr_t>(type), reinterpret_cast<uintptr_t>(name), 0});
    return nullptr;
}

int WINAPI namingLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_PRODUCT_NAME)
        return loadString(module, id, buffer, size);
    productName.copy(buffer, productName.size());
    return static_cast<int>(productName.size());
}

} // namespace

TEST(ResourceString, IsReadFromItsBlock)
{
    const std::wstring longText(300, L'x');
    const resourceFile_t file(
        {{65, 0, entries({L"first", L"", std::wstring(L"a\0b", 3), longText})}});
    const struct {
        UINT id;
        int length;
        std::wstring text;
    } cases[] = {
        {1024, 5, L"first"},   {1025, 0, L""},
        {1026, 3, L"a"}, // up to the first zero
        {1027, 300, longText}, {1039, 0, L""},
        {5000, 0, L""},        {1024 + 0x100000, 5, L"first"}, // blocks are numbered with 16 bits
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        std::wstring text = L"before";
        EXPECT_EQ(LoadStringFromModule(file.get(), c.id, text), c.length);
        EXPECT_EQ(text, c.text);
    }
}

TEST(ResourceString, NeutralLanguageGoesBeforeTheUsers)
{
    const uiLanguages_t languages(0x0407);
    const resourceFile_t both({{65, 0, entries({L"neutral"})}, {65, 7, entries({L"deutsch"})}});
    std::wstring text;
    LoadStringFromModule(both.get(), 1024, text);
    EXPECT_EQ(text, L"neutral");
}

TEST(ResourceString, LookUpsGoInOrderAndThenThePlatformIsAsked)
{
    const uiLanguages_t languages(0x0C07);
    const resourceFile_t file({{65, 0, entries({std::wstring(300, L'x'), L"second"})}});
    const HMODULE self = GetModuleHandleW(nullptr);
    lookUps.clear();
    const importPatch_t findEx(self, "FindResourceExW", reinterpret_cast<void*>(&noResourceEx));
    const importPatch_t find(self, "FindResourceW", reinterpret_cast<void*>(&noResource));
    ASSERT_TRUE(findEx.found() && find.found());
    std::wstring text;
    EXPECT_EQ(LoadStringFromModule(file.get(), 1025, text), 6);
    EXPECT_EQ(text, L"second");
    // Name and type have changed places in the last one.
    EXPECT_EQ(lookUps,
              (std::vector<lookUp_t>{{true, 6, 65, 0}, {true, 6, 65, 7}, {false, 65, 6, 0}}));
    EXPECT_EQ(LoadStringFromModule(file.get(), 1024, text), 259);
    EXPECT_EQ(text, std::wstring(259, L'x'));
}

TEST(ProductName, TakesThePlaceOfEveryMarker)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "LoadStringW",
                              reinterpret_cast<void*>(&namingLoadString));
    ASSERT_TRUE(patch.found());
    loadString = importOriginal<decltype(&LoadStringW)>(patch);
    const struct {
        const wchar_t* text;
        const wchar_t* name;
        const wchar_t* expanded;
    } cases[] = {
        {L"", L"Name", L""},
        {L"plain", L"Name", L"plain"},
        {L"<<%PN%>>", L"Name", L"Name"},
        {L"a <<%PN%>> b <<%PN%>> c", L"Name", L"a Name b Name c"},
        {L"<<%PN%>><<%PN%>>", L"N", L"NN"},
        {L"a <<%PN%>> b", L"", L"a  b"},
        {L"<<% <<%PN% <<%XX%>> <<%pn%>>", L"Name", L"<<% <<%PN% <<%XX%>> <<%pn%>>"},
        {L"<<<%PN%>>>", L"Name", L"<Name>"},
        {L"<<%PN%>>-<<%PN%>>", L"<<%PN%>>", L"<<%PN%>>-<<%PN%>>"}, // ends
        {L"<<%PN%>>PN%>>", L"<<%", L"<<%PN%>>"},                   // nothing is searched twice
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text);
        productName = c.name;
        std::wstring text = c.text;
        ExpandProductName(text);
        EXPECT_EQ(text, c.expanded);
    }
}

TEST(BrandedString, ComesFromTheResourceModuleWithTheNameInIt)
{
    const resourceFile_t file({{65, 0, entries({L"no marker", L"<<%PN%>> here", L"<<%other"})}});
    const importPatch_t patch(GetModuleHandleW(nullptr), "LoadStringW",
                              reinterpret_cast<void*>(&namingLoadString));
    loadString = importOriginal<decltype(&LoadStringW)>(patch);
    productName = L"Name";
    EXPECT_EQ(ResourceModule(), GetModuleHandleW(nullptr));
    SetResourceModule(file.get());
    EXPECT_EQ(GetBrandedString(1024), L"no marker");
    EXPECT_EQ(GetBrandedString(1025), L"Name here");
    EXPECT_EQ(GetBrandedString(1026), L"<<%other");
    EXPECT_EQ(GetBrandedString(9999), L"");
    EXPECT_EQ(SetResourceModule(nullptr), file.get());
    EXPECT_EQ(GetBrandedString(1024), L""); // the program's own strings: none
    SetResourceModule(GetModuleHandleW(nullptr));
}
