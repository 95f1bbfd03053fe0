#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// A benchmark is a ratio of two bodies measured in one run. All cases of a group take part in every
// round, so that whatever else the machine does meets all alike; the median of the rounds decides.
// Each round has another order, in which each case follows another one, so that none always finds
// the caches as the same neighbour left them.
namespace bench {

inline constexpr int usualRounds = 11;

inline double secondsOf(const std::function<void()>& body)
{
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// quantile gives the value below which that part of the values lies.
inline double quantile(std::vector<double> values, double part)
{
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

// row prints one row of the table as a line of JSON, for scripts/bench.py.
//
// what, workload: without quotation marks and backslashes
// ratios:         one of each round
// target:         the ratio that the row has to keep; 0 when it only informs
inline void row(const std::string& what, const std::string& workload,
                const std::vector<double>& ratios, double target = 0)
{
    const double ratio = quantile(ratios, 0.5);
    std::printf(R"({"what": "%s", "workload": "%s", "ratio": %.6g, "spread": [%.6g, %.6g], )",
                what.c_str(), workload.c_str(), ratio, quantile(ratios, 0.25),
                quantile(ratios, 0.75));
    if (target > 0)
        std::printf(R"("target": %g, "met": %s})"
                    "\n",
                    target, ratio <= target ? "true" : "false");
    else
        std::printf(R"("target": null, "met": true})"
                    "\n");
    std::fflush(stdout);
}

// CGroup is a group of cases.
class CGroup
{
public:
    // Add adds a case.
    //
    // prepare: runs before each body and isn't measured
    // Returns: the case's number
    size_t Add(std::function<void()> body, std::function<void()> prepare = {})
    {
        m_cases.push_back({std::move(body), std::move(prepare), {}});
        return m_cases.size() - 1;
    }

    // Run measures every case in that many rounds, after a first one that doesn't count.
    void Run(int rounds = usualRounds)
    {
        for (int round = -1; round < rounds; ++round) {
            for (size_t i = 0; i < m_cases.size(); ++i) {
                case_t& one = m_cases[Turn(static_cast<size_t>(round + 1), i)];
                if (one.prepare)
                    one.prepare();
                const double seconds = secondsOf(one.body);
                if (round >= 0)
                    one.seconds.push_back(seconds);
            }
        }
    }

    // Ratios gives what a case took in each round, in parts of another one.
    std::vector<double> Ratios(size_t measured, size_t floor) const
    {
        std::vector<double> ratios;
        for (size_t i = 0; i < m_cases[measured].seconds.size(); ++i)
            ratios.push_back(m_cases[measured].seconds[i] / m_cases[floor].seconds[i]);
        return ratios;
    }

    // Slopes gives the exponent with which the time grows from one case to another that does so
    // many times the work.
    std::vector<double> Slopes(size_t less, size_t more, double times) const
    {
        std::vector<double> slopes = Ratios(more, less);
        for (double& slope : slopes)
            slope = std::log(slope) / std::log(times);
        return slopes;
    }

private:
    struct case_t {
        std::function<void()> body;
        std::function<void()> prepare;
        std::vector<double> seconds;
    };

    // Turn gives the case at a place of a round: a balanced Latin square (E. J. Williams), by
    // which each case comes after each other one equally often.
    size_t Turn(size_t round, size_t place) const
    {
        const size_t count = m_cases.size();
        if (count % 2 == 1 && round % 2 == 1) // an odd number takes the mirrored square, too
            place = count - 1 - place;
        const size_t zigzag = place % 2 == 1 ? place / 2 + 1 : count - place / 2;
        return (round + zigzag) % count;
    }

    std::vector<case_t> m_cases;
};

} // namespace bench
