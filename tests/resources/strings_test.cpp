#include "resources/strings.h"

#include "installation.h"
#include "resources/resourceids.h"
#include "support/importhooks.h"

namespace {

// stringFile makes a copy of the branding DLL with a string block 65 of a test's own, loaded as a
// data file.
CLoadedModule stringFile(std::vector<std::wstring> texts)
{
    std::wstring block;
    texts.resize(16);
    for (const std::wstring& text : texts)
        block += static_cast<wchar_t>(text.size()) + text;
    const fs::path path = fs::temp_directory_path() / std::to_wstring(GetCurrentProcessId());
    fs::copy_file(builtFile(L"Branding.dll"), path, fs::copy_options::overwrite_existing);
    const HANDLE update = BeginUpdateResourceW(path.c_str(), FALSE);
    UpdateResourceW(update, MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(65), 0, block.data(),
                    static_cast<DWORD>(block.size() * 2));
    EXPECT_TRUE(EndUpdateResourceW(update, FALSE));
    return loadAsData(path);
}

} // namespace

TEST(ResourceString, ComesFromItsBlockOrElseFromThePlatformCut)
{
    static std::string asked;
    const std::wstring longText(300, L'x');
    const CLoadedModule file = stringFile({L"first", L"", std::wstring(L"a\0b", 3), longText});
    const std::tuple<UINT, int, std::wstring> cases[] = {
        {1024, 5, L"first"},   {1025, 0, L""}, {1026, 3, L"a"}, // up to the first zero
        {1027, 300, longText}, {5000, 0, L""}, {1024 + 0x100000, 5, L"first"}, // 16 bits of block
    };
    for (const auto& [id, length, expected] : cases) {
        std::wstring text = L"before";
        EXPECT_EQ(LoadStringFromModule(file.get(), id, text), length) << id;
        EXPECT_EQ(text, expected) << id;
    }
    asked.clear();
    const importHooks_t missing(
        GetModuleHandleW(nullptr), {{"FindResourceExW"}, {"FindResourceW"}},
        +[](const hookedCall_t& call) {
            asked +=
                call.shown(call.function == std::string_view("FindResourceW") ? "-nn" : "-nnn");
            return true;
        });
    const uiLanguages_t languages(0x0807);
    std::wstring text;
    EXPECT_EQ(LoadStringFromModule(file.get(), 1027, text), 259);
    EXPECT_EQ(text, longText.substr(0, 259));
    // The last reversed.
    EXPECT_EQ(asked, "FindResourceExW 6 41 0FindResourceExW 6 41 7FindResourceW 6 41");
}

TEST(ProductName, TakesThePlaceOfEveryMarker)
{
    const std::tuple<std::wstring, const wchar_t*, const wchar_t*> cases[] = {
        {L"a <<%PN%>> b <<%PN%>> c", L"Name", L"a Name b Name c"},
        {L"<<% <<%PN% <<%XX%>> <<%pn%>>", L"Name", L"<<% <<%PN% <<%XX%>> <<%pn%>>"},
        // Nothing is searched twice.
        {L"<<%PN%>>PN%>>", L"<<%", L"<<%PN%>>"},
    };
    for (auto [text, name, expanded] : cases) {
        const givenString_t productName(IDS_PRODUCT_NAME, name);
        ExpandProductName(text);
        EXPECT_EQ(text, expanded);
    }
    const givenString_t inside(IDS_STATUS_READY, L"of <<%PN%>>.");
    EXPECT_EQ(GetBrandedString(IDS_STATUS_READY), L"of ."); // there is no branding DLL
}
