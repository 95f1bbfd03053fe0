#pragma once

#include <windows.h>

namespace tracecore {

// lastErrorKeeper_t gives the thread's last error back at the end of the block: code that traces
// before it reads the error of its own call must not see the tracer's.
class lastErrorKeeper_t
{
public:
    lastErrorKeeper_t() noexcept : m_error(GetLastError()) {}
    ~lastErrorKeeper_t() { SetLastError(m_error); }
    lastErrorKeeper_t(const lastErrorKeeper_t&) = delete;
    lastErrorKeeper_t& operator=(const lastErrorKeeper_t&) = delete;

private:
    const DWORD m_error;
};

} // namespace tracecore
