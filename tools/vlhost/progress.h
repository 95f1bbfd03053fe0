#pragma once

#include <chrono>
#include <cstddef>

// CProgress shows on a terminal how much of a piece of work is done; elsewhere it is silent.
class CProgress
{
public:
    CProgress(const char* what, size_t total);
    ~CProgress(); // removes the line
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    void Step();

private:
    const char* m_what;
    size_t m_total;
    size_t m_done = 0;
    bool m_terminal;
    std::chrono::steady_clock::time_point m_shown{};
};
