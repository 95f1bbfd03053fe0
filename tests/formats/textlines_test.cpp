#include "formats/text/textlines.h"

#include <gtest/gtest.h>

TEST(TextLines, EveryLineEndCountsAndBlankLinesDoNot)
{
    using namespace std::string_literals;
    const std::pair<std::string, TextLines> cases[] = {{"\r\n\r\n\n", {}},
                                                       {"a\r\n\r\nb", {"a", "b"}},
                                                       {"\na\rb\n", {"a", "b"}},
                                                       {" \n\ta\0b "s, {" ", "\ta\0b "s}}};
    for (const auto& [text, expected] : cases) {
        TextLines lines = {"old"};
        splitlines(text, lines);
        EXPECT_EQ(lines, expected);
    }
}
