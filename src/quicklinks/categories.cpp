#include "quicklinks/categories.h"

#include "common/registry.h"
#include "formats/backup/records.h"
#include "neighbours/dashboardkeys.h"

#include <windows.h>

#include <string>
#include <string_view>

namespace {

// readtext reads a text value of size bytes.
bool readtext(HKEY key, const wchar_t* name, DWORD size, std::u16string& text)
{
    std::wstring units((size + 1) / sizeof(wchar_t), L'\0');
    DWORD type = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(units.data()), &size) !=
            ERROR_SUCCESS ||
        !isWholeText(type, units, size, noBytes_t::haveNoEnd))
        return false;
    const std::wstring_view visible(units.c_str()); // a wide text blob ends at its first zero
    text.assign(visible.begin(), visible.end());
    return true;
}

// nextcategory reads the value at index into a pair; false ends the enumeration.
bool nextcategory(HKEY key, DWORD index, CDerNode& pair)
{
    wchar_t name[261] = {};
    DWORD length = 260; // a longer name ends the enumeration
    DWORD size = 0;
    if (RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return false;
    std::u16string text;
    if (size == 0 || !readtext(key, name, size, text))
        return false;
    pair.SetSequence(2);
    pair.Child(0).SetWide(name);
    pair.Child(1).SetWide(text);
    return true;
}

void settext(HKEY key, const std::wstring& name, const std::u16string& text)
{
    RegSetValueExW(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(2 * text.size() + 2));
}

} // namespace

bool qlcategories_backup(CDerNode* out)
{
    const CRegistryKey key = openKey(HKEY_CURRENT_USER, dashboardCategoriesKey, KEY_READ);
    DWORD count = 0;
    if (key)
        RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                         nullptr, nullptr, nullptr, nullptr);
    CDerNode list;
    list.SetSequence(count);
    for (DWORD i = 0; i < count; ++i)
        if (!nextcategory(key.get(), i, list.Child(i)))
            break;
    if (out)
        *out = std::move(list);
    return count > 0;
}

void qlcategories_restore(const CDerElement* list)
{
    if (!list)
        return;
    RegDeleteKeyW(HKEY_CURRENT_USER, dashboardCategoriesKey);
    if (const CRegistryKey dashboard =
            openKey(HKEY_CURRENT_USER, dashboardKey, KEY_READ | KEY_WRITE))
        settext(dashboard.get(), dashboardLastCategory, {});
    CDerSequenceView pairs; // what can't be decoded is empty, here and below
    (void)pairs.Decode(*list);
    CRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, dashboardCategoriesKey, 0, nullptr, 0,
                        KEY_READ | KEY_WRITE, nullptr, key.put(), nullptr) != ERROR_SUCCESS)
        return;
    for (const CDerElement& element : pairs) {
        CDerSequenceView pair;
        (void)pair.Decode(element);
        const StoredCategory category = decodeCategory(pair);
        settext(key.get(), std::wstring(category.name.begin(), category.name.end()), category.text);
    }
}
