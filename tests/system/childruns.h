#pragma once

#include "common/module.h"
#include "support/process.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

inline const std::filesystem::path reportFile = L"C:\\VL\\report.txt";

// inChildren runs the test DISABLED_Child of this program in a process of its own, and again after a
// crash or a hang, so that neither ends the test. The child finds in its environment the scenario and the
// first run to make (VL_SCENARIO, VL_FIRST), and reports each run as it begins ("at N"), what it is
// about ("about TEXT"), what is wrong ("BAD TEXT") and its end ("done").
inline void inChildren(const std::string& scenario, size_t first)
{
    size_t runs = 0, faults = 0, stillborn = 0;
    const auto fault = [&](size_t at, const std::string& what) {
        ++faults;
        ADD_FAILURE() << scenario << ", run " << at << what;
    };
    for (std::string last; last != "done";) {
        _putenv_s("VL_SCENARIO", scenario.c_str());
        _putenv_s("VL_FIRST", std::to_string(first).c_str());
        std::filesystem::remove(reportFile);
        const process_t child(moduleFileName(nullptr),
                              L"--gtest_filter=*DISABLED_Child --gtest_also_run_disabled_tests");
        std::string seen;
        bool hangs = false;
        while (!hangs && child.runs(90000))
            hangs = std::exchange(seen, fileBytes(reportFile)) == fileBytes(reportFile);
        child.kill();
        std::string about;
        size_t at = first - 1;
        std::ifstream report(reportFile);
        for (std::string line; std::getline(report, line); last = line) {
            if (line.starts_with("at "))
                at = std::stoul(line.substr(3)), ++runs;
            else if (line.starts_with("about "))
                about = " (" + line.substr(6) + "): ";
            else if (line.starts_with("BAD "))
                fault(at, about + line.substr(4));
        }
        if (last == "done")
            break;
        if (at >= first)
            fault(at, hangs ? ": hangs" : ": crashes");
        if (at < first && ++stillborn == 20)
            break;
        Sleep(at < first ? 100 : 0); // the system lets go of a crashed process's folder later
        first = std::max(first, at + 1);
    }
    EXPECT_GT(20u, stillborn) << "the other process doesn't even start";
    std::printf("%s: %zu runs, %zu faults\n", scenario.c_str(), runs, faults);
}
