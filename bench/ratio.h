#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

// A benchmark is a ratio of two bodies measured in one run: their rounds alternate, so that
// whatever else the machine does meets both alike, and the median of the rounds decides.
namespace bench {

inline double secondsOf(const std::function<void()>& body)
{
    LARGE_INTEGER frequency;
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    body();
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - start.QuadPart) /
           static_cast<double>(frequency.QuadPart);
}

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// ratio prints one row of the table: the median of measured / baseline over the rounds, beside its
// limit.
//
// limit:   0 when the row only informs
// Returns: the ratio
inline double ratio(const char* name, double limit, int rounds,
                    const std::function<void()>& measured, const std::function<void()>& baseline)
{
    measured();
    baseline();
    std::vector<double> ratios;
    std::vector<double> seconds;
    for (int i = 0; i < rounds; ++i) {
        const double mine = secondsOf(measured);
        seconds.push_back(mine);
        ratios.push_back(mine / secondsOf(baseline));
    }
    const double result = median(ratios);
    if (limit > 0)
        std::printf("%-58s %8.3f  (limit %.2f%s)  %.3f ms\n", name, result, limit,
                    result <= limit ? "" : ", OVER", median(seconds) * 1000);
    else
        std::printf("%-58s %8.3f  %.3f ms\n", name, result, median(seconds) * 1000);
    return result;
}

} // namespace bench
