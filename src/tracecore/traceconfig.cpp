#include "tracecore/realtracer.h"

namespace tracecore {

void realTracer_t::fileName(std::wstring& out, bool)
{
    out.clear();
}

bool realTracer_t::expire()
{
    return false;
}

uint32_t realTracer_t::traceMode()
{
    return sinkNowhere;
}

void pollConfiguration(tracer_t& tracer) noexcept
{
    const uint32_t now = GetTickCount();
    if (now <= tracer.nextPoll.load(std::memory_order_relaxed))
        return;
    tracer.nextPoll.exchange(now + 30000);
}

} // namespace tracecore
