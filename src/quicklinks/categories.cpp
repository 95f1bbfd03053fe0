#include "quicklinks/categories.h"

#include "common/registry.h"
#include "formats/backup/records.h"
#include "neighbours/dashboardkeys.h"

#include <windows.h>

#include <string>
#include <vector>

namespace {

// nextcategory reads the value at index into a pair; false ends the enumeration.
//
// data: where the value's text is read, and that grows as it has to
bool nextcategory(HKEY key, DWORD index, std::vector<wchar_t>& data, CDerNode& pair)
{
    wchar_t name[261] = {};
    DWORD type = 0;
    DWORD size = 0;
    const auto read = [&] {
        DWORD length = 260; // a longer name ends the enumeration
        size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        return RegEnumValueW(key, index, name, &length, nullptr, &type,
                             reinterpret_cast<BYTE*>(data.data()), &size);
    };
    LSTATUS error = read();
    if (error == ERROR_MORE_DATA && size > data.size() * sizeof(wchar_t)) {
        data.resize(size / sizeof(wchar_t) + 1);
        error = read();
    }
    if (error != ERROR_SUCCESS || !isWholeText(type, data, size, noBytes_t::haveNoEnd))
        return false;
    pair.SetSequence(2);
    pair.Child(0).SetWide(name);
    pair.Child(1).SetWide(data.data()); // a wide text blob ends at its first zero
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
    std::vector<wchar_t> data(256);
    CDerTree nobodys;
    CDerNode& list = out ? *out : nobodys;
    list.SetSequence(count);
    for (DWORD i = 0; i < count; ++i)
        if (!nextcategory(key.get(), i, data, list.Child(i)))
            break;
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
