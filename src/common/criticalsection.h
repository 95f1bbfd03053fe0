#pragma once

#include <windows.h>

namespace tracecore {

// criticalSection_t is the platform's critical section in the form that std::lock_guard takes.
class criticalSection_t
{
public:
    criticalSection_t() noexcept { InitializeCriticalSection(&m_section); }
    ~criticalSection_t() { DeleteCriticalSection(&m_section); }
    criticalSection_t(const criticalSection_t&) = delete;
    criticalSection_t& operator=(const criticalSection_t&) = delete;

    void lock() noexcept { EnterCriticalSection(&m_section); }
    void unlock() noexcept { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section;
};

} // namespace tracecore
