#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

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

// endWhenStuck ends the process when the number stays the same for long. It is one for the whole
// life of the process.
inline void endWhenStuck(const std::atomic<size_t>& progress)
{
    std::thread([&] {
        for (size_t seen = ~size_t{0}; seen != progress;) {
            seen = progress;
            std::this_thread::sleep_for(std::chrono::seconds(90));
        }
        std::fprintf(stderr, "hangs\n");
        std::_Exit(9);
    }).detach();
}

// printRuns says what a sweep has made and found.
inline void printRuns(const char* what, size_t runs)
{
    const auto* const result = testing::UnitTest::GetInstance()->current_test_info()->result();
    std::printf("%s: %zu runs, %d faults\n", what, runs, result->total_part_count());
}

// IN_FRESH_PROCESS runs a block in a new process of this program, where nothing has been remembered
// yet: the test runs there again up to this place.
#define IN_FRESH_PROCESS(...)                                                                      \
    EXPECT_EXIT(([&] __VA_ARGS__(), endProcess()), testing::ExitedWithCode(0), "")
