#include "resources/strings.h"
#include "resources/resourceids.h"
#include "installation.h"

namespace {

// stringFile makes a copy of the branding DLL with a string block 65 of a test's own, loaded as a data file.
CLoadedModule stringFile(std::vector<std::wstring> texts)
{
    std::wstring block;
    texts.resize(16);
    for (const std::wstring& text : texts)
        block += static_cast<wchar_t>(text.size()) + text;
    const fs::path path = newFolder() / L"strings.dll";
    fs::copy_file(builtFile(L"Branding.dll"), path);
    const HANDLE update = BeginUpdateResourceW(path.c_str(), FALSE);
    UpdateResourceW(update, MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(65), 0, block.data(),
                    static_cast<DWORD>(block.size() * 2));
    EXPECT_TRUE(EndUpdateResourceW(update, FALSE));
    return loadAsData(path);
}

std::wstring productName;
decltype(&LoadStringW) loadString;

int WINAPI namingLoadString(HINSTANCE module, UINT id, LPWSTR buffer, int size)
{
    if (id != IDS_PRODUCT_NAME)
        return loadString(module, id, buffer, size);
    return static_cast<int>(productName.copy(buffer, productName.size()));
}

} // namespace

TEST(ResourceString, IsReadFromItsBlock)
{
    const std::wstring longText(300, L'x');
    const CLoadedModule file = stringFile({L"first", L"", std::wstring(L"a\0b", 3), longText});
    const struct {
        UINT id;
        int length;
        std::wstring text;
    } cases[] = {
        {1024, 5, L"first"},   {1025, 0, L""}, {1026, 3, L"a"}, // up to the first zero
        {1027, 300, longText}, {5000, 0, L""}, {1024 + 0x100000, 5, L"first"}, // 16 bits of block
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        std::wstring text = L"before";
        EXPECT_EQ(LoadStringFromModule(file.get(), c.id, text), c.length);
        EXPECT_EQ(text, c.text);
    }
}

TEST(ProductName, TakesThePlaceOfEveryMarker)
{
    const importPatch_t patch("LoadStringW", namingLoadString);
    loadString = importOriginal<decltype(&LoadStringW)>(patch);
    const struct {
        const wchar_t* text;
        const wchar_t* name;
        const wchar_t* expanded;
    } cases[] = {
        {L"a <<%PN%>> b <<%PN%>> c", L"Name", L"a Name b Name c"},
        {L"<<% <<%PN% <<%XX%>> <<%pn%>>", L"Name", L"<<% <<%PN% <<%XX%>> <<%pn%>>"},
        // Nothing is searched twice.
        {L"<<%PN%>>PN%>>", L"<<%", L"<<%PN%>>"},
    };
    for (const auto& c : cases) {
        productName = c.name;
        std::wstring text = c.text;
        ExpandProductName(text);
        EXPECT_EQ(text, c.expanded);
    }
}
