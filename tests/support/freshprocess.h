#pragma once

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

// endProcess ends one for a block of a test: it says what failed, which nobody else would, in the text
// that the failing block shows.
[[noreturn]] inline void endProcess()
{
    const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i)
        if (result.GetTestPartResult(i).failed())
            std::fprintf(stderr, "line %d: %s\n", result.GetTestPartResult(i).line_number(),
                         result.GetTestPartResult(i).message());
    std::exit(testing::Test::HasFailure());
}

// IN_FRESH_PROCESS runs a block in a new process of this program, where nothing has been remembered
// yet: the test runs there again up to this place.
#define IN_FRESH_PROCESS(...)                                                                      \
    EXPECT_EXIT(([&] __VA_ARGS__(), endProcess()), testing::ExitedWithCode(0), "")
