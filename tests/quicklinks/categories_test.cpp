#include <string>
#include <utility>
#include <vector>

#include <windows.h>
#include <wincrypt.h>

#include <gtest/gtest.h>

#include "backup/blob/derview.h"
#include "common/scoped.h"
#include "quicklinks/categories.h"

namespace {

using bytes = std::vector<uint8_t>;
using Texts = std::vector<std::pair<std::wstring, std::wstring>>;

constexpr wchar_t dashboardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

struct Value {
    std::wstring name;
    DWORD type;
    std::wstring text; // the registry adds no terminator when a zero stands behind the data
    DWORD size;        // bytes
};

class Categories : public testing::Test
{
protected:
    Categories() { clear(); }
    ~Categories() override { clear(); }
    static void clear()
    {
        RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
        RegDeleteKeyW(HKEY_CURRENT_USER, dashboardKey);
    }
    static CRegistryKey create(const wchar_t* path)
    {
        CRegistryKey key;
        RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(),
                        nullptr);
        return key;
    }
    static void set(const wchar_t* path, const Value& value)
    {
        const CRegistryKey key = create(path);
        ASSERT_EQ(RegSetValueExW(key.get(), value.name.c_str(), 0, value.type,
                                 reinterpret_cast<const BYTE*>(value.text.c_str()), value.size),
                  ERROR_SUCCESS);
    }
    // stored gives the values of a key; a value that isn't a terminated REG_SZ is shown as "?".
    static Texts stored(const wchar_t* path)
    {
        Texts texts;
        CRegistryKey key;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_READ, key.put()) != ERROR_SUCCESS)
            return {{L"no key", L""}};
        for (DWORD i = 0;; ++i) {
            wchar_t name[300] = {};
            wchar_t text[300] = {};
            DWORD length = 300;
            DWORD size = sizeof text - 2;
            DWORD type = 0;
            if (RegEnumValueW(key.get(), i, name, &length, nullptr, &type,
                              reinterpret_cast<BYTE*>(text), &size) != ERROR_SUCCESS)
                return texts;
            const bool good = type == REG_SZ && size == 2 * (wcslen(text) + 1);
            texts.emplace_back(name, good ? text : L"?");
        }
    }
    // carried gives the pairs of an encoded list.
    static Texts carried(const bytes& encoded)
    {
        CDerSequenceView list;
        EXPECT_TRUE(list.Decode(encoded));
        Texts texts;
        for (const CDerElement& element : list) {
            CDerSequenceView pair;
            EXPECT_TRUE(pair.Decode(element));
            EXPECT_EQ(pair.Count(), 2u);
            const std::u16string name = pair[0].WideText();
            const std::u16string text = pair[1].WideText();
            texts.emplace_back(std::wstring(name.begin(), name.end()),
                               std::wstring(text.begin(), text.end()));
        }
        return texts;
    }
};

TEST_F(Categories, BackupEndsAtTheFirstValueThatIsNoTerminatedText)
{
    const std::wstring longName(259, L'n');
    const Value before{L"a", REG_SZ, L"A", 4};
    const Value after{L"z", REG_SZ, L"Z", 4};
    const struct {
        const char* what;
        Value between;
        Texts carried;
    } cases[] = {
        {"empty text", {L"m", REG_SZ, L"", 2}, {{L"a", L"A"}, {L"m", L""}, {L"z", L"Z"}}},
        {"not expanded",
         {L"m", REG_EXPAND_SZ, L"%X%", 8},
         {{L"a", L"A"}, {L"m", L"%X%"}, {L"z", L"Z"}}},
        {"zero inside",
         {L"m", REG_SZ, std::wstring(L"b\0c", 3), 8},
         {{L"a", L"A"}, {L"m", L"b"}, {L"z", L"Z"}}},
        {"longest name", {longName, REG_SZ, L"", 2}, {{L"a", L"A"}, {longName, L""}, {L"z", L"Z"}}},
        {"longer name", {longName + L"n", REG_SZ, L"", 2}, {{L"a", L"A"}}},
        {"size 0", {L"m", REG_SZ, L"", 0}, {{L"a", L"A"}}},
        {"number", {L"m", REG_DWORD, L"ab", 4}, {{L"a", L"A"}}},
        {"several texts", {L"m", REG_MULTI_SZ, L"ab", 6}, {{L"a", L"A"}}},
        {"odd length", {L"m", REG_SZ, L"bc", 5}, {{L"a", L"A"}}},
        {"one byte", {L"m", REG_SZ, L"b", 1}, {{L"a", L"A"}}},
        {"no terminator", {L"m", REG_SZ, L"bcX", 4}, {{L"a", L"A"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        clear();
        for (const Value& value : {before, c.between, after})
            set(categoriesKey, value);
        CDerNode out;
        EXPECT_TRUE(qlcategories_backup(&out));
        EXPECT_EQ(carried(out.Encode()), c.carried);
        EXPECT_TRUE(qlcategories_backup(nullptr));
    }
}

TEST_F(Categories, BackupTellsWhetherThereAreValuesNotWhetherTheyAreCarried)
{
    const bytes empty{0x30, 0x00};
    CDerNode out;
    EXPECT_FALSE(qlcategories_backup(&out));
    EXPECT_EQ(out.Encode(), empty);
    EXPECT_EQ(stored(dashboardKey), (Texts{{L"no key", L""}})); // nothing was made
    create(categoriesKey);
    EXPECT_FALSE(qlcategories_backup(&out));
    EXPECT_EQ(out.Encode(), empty);
    set(categoriesKey, {L"a", REG_DWORD, L"ab", 4});
    EXPECT_TRUE(qlcategories_backup(&out));
    EXPECT_EQ(out.Encode(), empty);
    RegDeleteKeyW(HKEY_CURRENT_USER, categoriesKey);
    set(categoriesKey, {L"ab", REG_SZ, L"", 2});
    EXPECT_TRUE(qlcategories_backup(&out));
    EXPECT_EQ(out.Encode(),
              (bytes{0x30, 14, 0x30, 12, 0x1E, 6, 0, 'a', 0, 'b', 0, 0, 0x1E, 2, 0, 0}));
}

TEST_F(Categories, RestoreReplacesAllAndEmptiesTheLastUsed)
{
    const struct {
        const char* what;
        bytes encoded;
        Texts categories;
    } cases[] = {
        {"empty list", {0x30, 0}, {}},
        {"undecodable", {0x30, 5, 1}, {}},
        {"no bytes", {}, {}},
        {"pair",
         {0x30, 14, 0x30, 12, 0x1E, 4, 0, 'n', 0, 0, 0x1E, 4, 0x4E, 0x00, 0, 0},
         {{L"n", L"\u4E00"}}},
        {"the later of two of one name",
         {0x30, 28,   0x30, 12,   0x1E, 4, 0,   'n', 0, 0,    0x1E, 4, 0,   'b', 0,
          0,    0x30, 12,   0x1E, 4,    0, 'N', 0,   0, 0x1E, 4,    0, 'c', 0,   0},
         {{L"n", L"c"}}},
        {"missing text", {0x30, 8, 0x30, 6, 0x1E, 4, 0, 'n', 0, 0}, {{L"n", L""}}},
        {"missing items", {0x30, 2, 0x30, 0}, {{L"", L""}}},
        {"third item",
         {0x30, 14, 0x30, 12, 0x1E, 4, 0, 'n', 0, 0, 0x1E, 2, 0, 0, 4, 0},
         {{L"n", L""}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        clear();
        set(dashboardKey, {L"LastQLCategory", REG_EXPAND_SZ, L"n", 4});
        set(dashboardKey, {L"Other", REG_SZ, L"o", 4});
        set(categoriesKey, {L"old", REG_SZ, L"o", 4});
        bytes encoded = c.encoded;
        const CRYPT_DATA_BLOB blob{static_cast<DWORD>(encoded.size()), encoded.data()};
        qlcategories_restore(&blob);
        EXPECT_EQ(stored(categoriesKey), c.categories);
        EXPECT_EQ(stored(dashboardKey), (Texts{{L"LastQLCategory", L""}, {L"Other", L"o"}}));
    }
}

TEST_F(Categories, RestoreWithoutABlobOrADashboardKey)
{
    qlcategories_restore(nullptr);
    EXPECT_EQ(stored(dashboardKey), (Texts{{L"no key", L""}}));
    const CRYPT_DATA_BLOB none{};
    qlcategories_restore(&none);
    EXPECT_EQ(stored(dashboardKey), Texts{}); // the last used is emptied only where the key was
    EXPECT_EQ(stored(categoriesKey), Texts{});
}

TEST_F(Categories, BackupAndRestoreGiveTheSameTexts)
{
    set(categoriesKey, {L"", REG_SZ, L"default", 16});
    set(categoriesKey, {L"\u00C4 =|", REG_EXPAND_SZ, L"%PATH%\U0001F600", 18});
    CDerNode out;
    EXPECT_TRUE(qlcategories_backup(&out));
    bytes encoded = out.Encode();
    set(categoriesKey, {L"later", REG_SZ, L"", 2});
    const CRYPT_DATA_BLOB blob{static_cast<DWORD>(encoded.size()), encoded.data()};
    qlcategories_restore(&blob);
    EXPECT_EQ(stored(categoriesKey),
              (Texts{{L"", L"default"}, {L"\u00C4 =|", L"%PATH%\U0001F600"}}));
}

} // namespace
