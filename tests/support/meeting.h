#pragma once

#include <atomic>
#include <thread>

// meeting_t lets that many threads meet, again and again. The library's own barrier loses wake-ups
// on this platform, so they ask.
class meeting_t
{
public:
    explicit meeting_t(int expected) : m_expected(expected) {}
    void arriveAndWait()
    {
        const int meeting = m_arrived++ / m_expected;
        while (m_arrived / m_expected == meeting)
            std::this_thread::yield();
    }

private:
    const int m_expected;
    std::atomic<int> m_arrived{0};
};
