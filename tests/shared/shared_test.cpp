#include "formats/backup/storednames.h"
#include "formats/text/printable.h"
#include "formats/text/unicode.h"
#include "shared/filesystem.h"
#include "shared/jsontext.h"
#include "shared/statusnames.h"

#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

#ifdef _WIN32
TEST(CaseKey, IsTheSystemsOwn)
{
    constexpr std::pair<char16_t, char16_t> alphabets[] = {
        {'A', 0x17F}, {0x1F8, 0x233}, {0x386, 0x3CE}, {0x400, 0x586}, {0x1E00, 0x1EFF}};
    const auto key = [](char16_t c) { return caseKey(utf8FromUtf16({&c, 1})); };
    std::map<std::u16string, wchar_t> capitals;
    for (wchar_t c = 'A'; c < 0xFFFF; ++c) {
        if (c >= 0xD800 && c < 0xE000)
            continue;
        wchar_t capital = c;
        CharUpperBuffW(&capital, 1);
        EXPECT_EQ(capitals.emplace(key(c), capital).first->second, capital) << +c;
        const bool checked = std::ranges::any_of(
            alphabets, [c](auto& of) { return c >= of.first && c <= of.second; });
        EXPECT_TRUE(!checked || key(c) == key(capital)) << +c;
    }
}
#endif

TEST(Printable, NothingSteersATerminal)
{
    const struct {
        std::string text, shown, json;
    } cases[] = {
        {"C:\\Größe\\日 \U0001F600", "C:\\Größe\\日 \U0001F600",
         "\"C:\\\\Größe\\\\日 \U0001F600\""},
        {"\x1B[31m\x7F\t", "\\x1B[31m\\x7F\\t", "\"\\u001b[31m\\u007f\\t\""},
        {"\u0085\u009B\u00A0", "\\u{85}\\u{9B}\u00A0", "\"\\u0085\\u009b\u00A0\""},
        {"\u061C\u200E\u200F\u202E\u2069\u2028x",
         "\\u{61C}\\u{200E}\\u{200F}\\u{202E}\\u{2069}\\u{2028}x",
         "\"\\u061c\\u200e\\u200f\\u202e\\u2069\\u2028x\""},
        {"\xFF\xE6\x97\xC0\xAF\uFFFD", "\\xFF\\xE6\\x97\\xC0\\xAF\uFFFD",
         "\"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shown);
        EXPECT_EQ(printable(c.text), c.shown);
        EXPECT_EQ(jsonText(c.text, false), c.json);
    }
    EXPECT_EQ(printable("a\r\nb"), "a\\r\\nb");
    EXPECT_EQ(printableLines("a\r\nb\n\x1B\r"), "a\nb\n\\x1B\\r");
}

TEST(Names, AreThoseOfErrorsAndOfLongPaths)
{
    for (const uint32_t code : {5U, 0x80070005U})
        EXPECT_EQ(tools::describeStatus(static_cast<int32_t>(code)).name, "ERROR_ACCESS_DENIED")
            << code;
#ifdef _WIN32
    EXPECT_EQ(pathOf("//server/share/x").native(), L"\\\\?\\UNC\\server\\share\\x");
#endif
}

} // namespace
