#include "resources/strings.h"

#include "common/guardedcall.h"
#include "formats/resource/stringblock.h"
#include "resources/branding.h"
#include "resources/resourceids.h"
#include "resources/resourcemodule.h"

#include <span>
#include <string_view>

namespace {

constexpr std::wstring_view markerStart = L"<<%";
constexpr std::wstring_view marker = L"<<%PN%>>";
constexpr WORD primaryLanguage = 0x3FF;
constexpr int bufferSize = 260; // characters

HRSRC findStringBlock(HMODULE module, WORD number)
{
    const auto type = MAKEINTRESOURCEW(6);
    const auto block = MAKEINTRESOURCEW(number);
    HRSRC found = FindResourceExW(module, type, block, 0);
    if (!found)
        found = FindResourceExW(module, type, block,
                                static_cast<WORD>(GetUserDefaultUILanguage() & primaryLanguage));
    if (!found)
        found = FindResourceW(module, type, block); // name and type are swapped. Intended.
    return found;
}

// readString gives the length in the block, 0 if the string isn't there.
int readString(HMODULE module, HRSRC resource, unsigned index, std::wstring& out)
{
    const HGLOBAL loaded = LoadResource(module, resource);
    const void* const data = loaded ? LockResource(loaded) : nullptr;
    if (!data)
        return 0;
    const auto text = findInStringBlock(
        {static_cast<const uint8_t*>(data), SizeofResource(module, resource)}, index);
    FreeResource(loaded);
    if (!text)
        return 0;
    const std::u16string_view visible = std::u16string_view(*text).substr(0, text->find(u'\0'));
    out.assign(visible.begin(), visible.end());
    return static_cast<int>(text->size());
}

int loadProductName(HMODULE module, wchar_t* buffer)
{
    return LoadStringW(module, IDS_PRODUCT_NAME, buffer, bufferSize);
}

} // namespace

std::wstring GetBrandedString(UINT id)
{
    std::wstring text;
    LoadStringFromModule(resourceModule(), id, text);
    if (text.find(markerStart) != std::wstring::npos)
        ExpandProductName(text);
    return text;
}

int LoadStringFromModule(HMODULE module, UINT id, std::wstring& out)
{
    if (const uint32_t block = stringBlockNumber(id)) {
        if (HRSRC resource = findStringBlock(module, static_cast<WORD>(block & 0xFFFF))) {
            if (const int length = readString(module, resource, stringBlockIndex(id), out))
                return length;
        }
    }
    wchar_t buffer[bufferSize] = {};
    const int length = LoadStringW(module, id, buffer, bufferSize);
    out = buffer;
    return length;
}

void ExpandProductName(std::wstring& text)
{
    const std::wstring name = GetProductName();
    for (size_t at = text.find(marker); at != std::wstring::npos;
         at = text.find(marker, at + name.size()))
        text.replace(at, marker.size(), name);
}

std::wstring GetProductName()
try {
    wchar_t buffer[bufferSize] = {};
    // Also with no branding DLL: the process's program may have the string. The platform trusts the
    // lengths in a file, so that it reads past the end of a damaged one.
    callGuarded(loadProductName, CBranding::LoadResourceDLL(), buffer);
    return buffer;
} catch (const structuredException_t&) {
    return {};
}
