#include "calls.h"

#include <algorithm>

using namespace tracecore;

namespace vltrace {

void callConsumer_t::begin(const source_t&)
{
    m_threads.clear();
    m_last = INT64_MIN;
}

callConsumer_t::thread_t& callConsumer_t::threadOf(uint32_t id)
{
    const auto [place, isNew] = m_threads.try_emplace(id);
    if (isNew) {
        place->second.id = id;
        enterThread(place->second);
    }
    return place->second;
}

int64_t callConsumer_t::stamp(thread_t& thread, const traceMoment_t& moment) const
{
    const int64_t known =
        moment.msOfDay ? moment.milliseconds() * 1000 : std::max<int64_t>(m_last, 0);
    return thread.last = thread.last == INT64_MIN ? known : std::max(known, thread.last + 1);
}

void callConsumer_t::close(thread_t& thread, int64_t to, bool finished)
{
    call_t& call = thread.calls[thread.depth - 1];
    if (thread.depth > 1)
        thread.calls[thread.depth - 2].inside += to - call.from;
    if (call.shown)
        leave(thread, call, to, finished);
    --thread.depth;
}

void callConsumer_t::lose(const traceStep_t& step)
{
    for (const lostFunction_t& lost : step.lost) {
        thread_t& thread = m_threads[lost.thread];
        close(thread, ++thread.last, false);
    }
}

void callConsumer_t::takeDamage(const source_t&, const traceDamage_t& item, const traceStep_t& step)
{
    lose(step);
    damage(item, std::max<int64_t>(m_last, 0));
}

void callConsumer_t::takeRecord(const traceEvent_t& event)
{
    lose(event.step);
    const traceRecord_t& record = event.record;
    thread_t& thread = threadOf(record.thread);
    if (isOfUse(record.level, levelUse_t::clock))
        return;
    if (record.level == levelEntry) {
        if (thread.depth == thread.calls.size())
            thread.calls.emplace_back();
        call_t& call = thread.calls[thread.depth++];
        call.name = record.text;
        call.from = stamp(thread, event.step.moment);
        call.inside = 0;
        call.offset = record.offset;
        call.shown = event.wanted;
        call.tag = 0;
        call.top = thread.depth;
        if (!call.shown)
            call.top = thread.depth > 1 ? thread.calls[thread.depth - 2].top : 0;
        if (call.shown)
            enter(thread, call);
    } else if (record.level == levelExit) {
        if (event.step.left)
            close(thread, stamp(thread, event.step.moment), true);
    } else if (event.wanted) {
        mark(thread, event, stamp(thread, event.step.moment));
        if (event.kind == kind_t::error)
            ++thread.last;
    }
    m_last = std::max(m_last, thread.last);
}

void callConsumer_t::end(const source_t&)
{
    for (auto& [id, thread] : m_threads)
        while (thread.depth > 0)
            close(thread, ++thread.last, false);
}

} // namespace vltrace
