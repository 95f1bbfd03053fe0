#include "quicklinks/categories.h"

#include "common/scoped.h"
#include "formats/der/derview.h"

#include <windows.h>

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
using bytes = std::vector<uint8_t>;
constexpr wchar_t dashboard[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categories[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

// valuesOf gives the names and texts of a key, a text only from a value of type REG_SZ.
std::wstring valuesOf(const wchar_t* path)
{
    CRegistryKey key;
    RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, key.put());
    std::wstring all;
    wchar_t name[300], text[300];
    auto* const data = reinterpret_cast<BYTE*>(text);
    DWORD type = 0, length = 300, size = sizeof text, i = 0;
    while (!RegEnumValueW(key.get(), i++, name, &length, nullptr, &type, data, &size)) {
        all += name + L"="s + (type == REG_SZ ? text : L"?") + L";";
        length = 300, size = sizeof text;
    }
    return all;
}

void restore(const bytes& encoded)
{
    const CDerElement list(encoded);
    qlcategories_restore(&list);
}

TEST(Categories, BackupEndsAtTheFirstValueThatIsNoTerminatedText)
{
    const std::wstring longName(259, L'n'), longText(280, L't');
    const std::tuple<std::wstring, std::wstring, std::wstring, DWORD, DWORD> cases[] = {
        {L"m", L"%X%\u4E00", L"a=A;m=%X%\u4E00;z=Z;", REG_EXPAND_SZ, 10},
        {L"m", L"b\0c"s, L"a=A;m=b;z=Z;", REG_SZ, 8},
        {L"m", longText, L"a=A;m=" + longText + L";z=Z;", REG_SZ, 562},
        {longName, L"", L"a=A;" + longName + L"=;z=Z;", REG_SZ, 2},
        {longName + L"n", L"", L"a=A;", REG_SZ, 2},
        {L"m", L"", L"a=A;", REG_SZ, 0},
        {L"m", L"b", L"a=A;", REG_DWORD, 4},
        {L"m", L"bc", L"a=A;", REG_SZ, 5},
        {L"m", L"bcX", L"a=A;", REG_SZ, 4}, // no terminator
        {L"", L"b", L"", REG_MULTI_SZ, 4}};
    for (const auto& [name, text, restored, type, size] : cases) {
        RegDeleteKeyW(HKEY_CURRENT_USER, categories);
        CDerTree out;
        EXPECT_FALSE(qlcategories_backup(&out));
        EXPECT_EQ(out.Encode(), (bytes{0x30, 0}));
        RegSetKeyValueW(HKEY_CURRENT_USER, categories, L"a", REG_SZ, L"A", 4);
        RegSetKeyValueW(HKEY_CURRENT_USER, categories, L"z", REG_SZ, L"Z", 4);
        RegSetKeyValueW(HKEY_CURRENT_USER, categories, name.c_str(), type, text.c_str(), size);
        EXPECT_TRUE(qlcategories_backup(nullptr) && qlcategories_backup(&out));
        restore(out.Encode());
        EXPECT_EQ(valuesOf(categories), restored) << name << text;
    }
}

TEST(Categories, RestoreEmptiesTheLastUsedOnlyWhereTheKeyWas)
{
    restore({0x30, 10, 0x30, 0, 0x30, 6, 0x1E, 4, 0, 'n', 0, 0});
    EXPECT_EQ(valuesOf(categories), L"=;n=;");
    RegDeleteTreeW(HKEY_CURRENT_USER, dashboard);
    restore({0x30, 0});
    EXPECT_EQ(valuesOf(dashboard), L"");
}

} // namespace
