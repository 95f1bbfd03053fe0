#include "agent/discovery.h"

#include "common/status.h"
#include "neighbours/linknames.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <cstdint>

using namespace tracecore;

namespace {

std::atomic<bool> firstAgentMiss{true};

// registeredMessage_t registers its message on first use. The 0 that a failure gives is kept as
// well.
class registeredMessage_t
{
public:
    explicit constexpr registeredMessage_t(const wchar_t* name) noexcept : m_name(name) {}

    UINT number() noexcept
    {
        uint64_t known = m_known.load(std::memory_order_relaxed);
        if (!(known & registered)) {
            known = registered | RegisterWindowMessageW(m_name);
            m_known.store(known, std::memory_order_relaxed); // two first uses store the same
        }
        return static_cast<UINT>(known);
    }

private:
    static constexpr uint64_t registered = 1ull << 32;
    const wchar_t* m_name;
    std::atomic<uint64_t> m_known{0};
};

constinit registeredMessage_t restoreDone{restoreDoneName};
constinit registeredMessage_t restore2Done{restore2DoneName};

} // namespace

HWND findAgentWindow()
{
    SetLastError(ERROR_SUCCESS);
    HWND window = FindWindowExW(nullptr, nullptr, agentWindowName, agentWindowName);
    if (window)
        return window;
    const DWORD error = GetLastError();
    if ((error & ~DWORD{ERROR_FILE_NOT_FOUND}) != 0)
        traceStatus("No access to VlAgent", statusFromError(error));
    else if (firstAgentMiss.exchange(false, std::memory_order_relaxed))
        traceText("'`I04`'VLAgent not running");
    else
        traceText("'`I04`'NoVLAgent");
    return nullptr;
}

UINT restoreDoneMessage()
{
    return restoreDone.number();
}

UINT restore2DoneMessage()
{
    return restore2Done.number();
}
