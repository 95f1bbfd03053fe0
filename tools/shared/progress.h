#pragma once

#include <chrono>
#include <cstdint>

// CProgress shows on a terminal how much is done of work that takes over a second; elsewhere, and
// with --quiet, it is silent.
class CProgress
{
public:
    // what:  a literal
    // total: of the steps, in any unit
    CProgress(const char* what, uint64_t total);
    ~CProgress(); // removes the line
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    void Step(uint64_t count = 1);

private:
    const char* m_what;
    uint64_t m_total;
    uint64_t m_done = 0;
    bool m_shown = false;
    bool m_silent;
    std::chrono::steady_clock::time_point m_next; // when the line changes
};
