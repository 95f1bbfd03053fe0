#include "quicklinks/categories.h"

#include "common/scoped.h"
#include "formats/der/derview.h"

#include <windows.h>
#include <wincrypt.h>

#include <cstring>
#include <string>

namespace {

constexpr wchar_t dashboardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

CRegistryKey openkey(const wchar_t* path, REGSAM access)
{
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, access, key.put()) != ERROR_SUCCESS)
        return {};
    return key;
}

// readtext reads a value of size bytes that is a terminated string; size isn't 0.
bool readtext(HKEY key, const wchar_t* name, DWORD size, std::u16string& text)
{
    std::vector<BYTE> data(size);
    DWORD type = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, data.data(), &size) != ERROR_SUCCESS)
        return false;
    if ((type != REG_SZ && type != REG_EXPAND_SZ) || size < 2 || size % 2 != 0)
        return false;
    std::u16string units(size / 2, u'\0');
    std::memcpy(units.data(), data.data(), size);
    if (units.back() != u'\0')
        return false;
    text.assign(units, 0, units.find(u'\0')); // where a wide text blob ends
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

void settext(HKEY key, const std::u16string& name, const std::u16string& text)
{
    const std::wstring wideName(name.begin(), name.end());
    RegSetValueExW(key, wideName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(2 * text.size() + 2));
}

} // namespace

bool qlcategories_backup(CDerNode* out)
{
    const CRegistryKey key = openkey(categoriesKey, KEY_READ);
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

void qlcategories_restore(const _CRYPTOAPI_BLOB* blob)
{
    if (!blob)
        return;
    RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
    if (const CRegistryKey dashboard = openkey(dashboardKey, KEY_READ | KEY_WRITE))
        settext(dashboard.get(), u"LastQLCategory", {});
    CDerSequenceView list; // what can't be decoded is empty, here and below
    if (blob->pbData)
        static_cast<void>(list.Decode({blob->pbData, blob->cbData}));
    CRegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, categoriesKey, 0, nullptr, 0, KEY_READ | KEY_WRITE,
                        nullptr, key.put(), nullptr) != ERROR_SUCCESS)
        return;
    for (const CDerElement& element : list) {
        CDerSequenceView pair;
        static_cast<void>(pair.Decode(element));
        settext(key.get(), pair[0].WideText(), pair[1].WideText());
    }
}
