#pragma once

#include <cstdlib>

#include <gtest/gtest.h>

// IN_FRESH_PROCESS runs a block in a new process of this program, where nothing has been remembered
// yet: the test runs there again up to this place.
#define IN_FRESH_PROCESS(...)                                                                      \
    EXPECT_EXIT(([&] __VA_ARGS__(), std::exit(testing::Test::HasFailure())),                       \
                testing::ExitedWithCode(0), "")
