#include <string>

#include <gtest/gtest.h>

#include "storage/textlines.h"

TEST(TextLines, EveryLineEndCountsAndBlankLinesDoNot)
{
    const struct {
        std::string text;
        TextLines lines;
    } cases[] = {
        {"", {}},
        {"\r\n\r\n\n", {}},
        {"a\r\n\r\nb", {"a", "b"}},
        {"\na\rb\n", {"a", "b"}},
        {" \n\ta ", {" ", "\ta "}},
        {std::string("a\0b\nc", 5), {std::string("a\0b", 3), "c"}},
        {"\xEF\xBB\xBF[x]\n", {"\xEF\xBB\xBF[x]"}},
        {std::string(1000, 'x') + "\r" + std::string(300, 'y'),
         {std::string(1000, 'x'), std::string(300, 'y')}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        TextLines lines = {"old"};
        splitlines(c.text, lines);
        EXPECT_EQ(lines, c.lines);
    }
}
