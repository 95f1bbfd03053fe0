#pragma once

#include <condition_variable>
#include <mutex>

// meeting_t lets that many threads meet, again and again. The library's own barrier loses wake-ups
// on this platform.
class meeting_t
{
public:
    explicit meeting_t(int expected) : m_expected(expected) {}
    void arriveAndWait()
    {
        std::unique_lock guard(m_lock);
        const int meeting = m_meeting;
        if (++m_arrived == m_expected) {
            m_arrived = 0;
            ++m_meeting;
            m_all.notify_all();
        }
        m_all.wait(guard, [&] { return m_meeting != meeting; });
    }

private:
    std::mutex m_lock;
    std::condition_variable m_all;
    const int m_expected;
    int m_arrived = 0;
    int m_meeting = 0;
};
