#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

inline void expectIn(const std::string& text, std::initializer_list<std::string_view> parts)
{
    for (const std::string_view part : parts)
        EXPECT_NE(text.find(part), text.npos) << part << " is not in\n" << text;
}
