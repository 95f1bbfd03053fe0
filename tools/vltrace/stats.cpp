#include "stats.h"

#include "formats/text/printable.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <utility>

using namespace tracecore;

namespace vltrace {

statsTable_t::statsTable_t(filter_t filter, std::string order, std::ostream& out)
    : m_filter(std::move(filter)), m_order(std::move(order)), m_out(out)
{}

functionStats_t& statsTable_t::row(const std::string& name)
{
    functionStats_t& found = m_rows[name];
    found.name = name;
    return found;
}

statsTable_t::call_t statsTable_t::pop(uint32_t thread)
{
    thread_t& walking = m_walking[thread];
    call_t call = std::move(walking.calls.back());
    walking.calls.pop_back();
    const auto open = walking.open.find(call.name);
    if (--open->second == 0)
        walking.open.erase(open);
    return call;
}

void statsTable_t::take(const traceItem_t& item, const traceStep_t& step)
{
    for (const lostFunction_t& lost : step.lost)
        if (const call_t call = pop(lost.thread); call.counted)
            ++row(call.name).unfinished;

    const auto* record = std::get_if<traceRecord_t>(&item);
    if (!record)
        return;
    const bool wanted = m_filter.wants(*record, step);
    if (record->level == levelEntry)
        enter(*record, wanted);
    else if (record->level == levelExit && step.left)
        leave(*record, step);
    else if (record->level != levelExit && wanted)
        count(*record, step);
}

void statsTable_t::enter(const traceRecord_t& record, bool wanted)
{
    thread_t& walking = m_walking[record.thread];
    size_t& open = walking.open[record.text];
    walking.calls.push_back({record.text, wanted, open++ > 0});
    if (wanted)
        ++row(record.text).calls;
}

void statsTable_t::leave(const traceRecord_t& record, const traceStep_t& step)
{
    const call_t call = pop(record.thread);
    const auto duration = durationOf(step.left->entered, step.moment);
    if (!call.counted || !duration)
        return;
    functionStats_t& stats = row(call.name);
    ++stats.timed;
    stats.total += call.inner ? 0 : *duration;
    stats.longest = std::max(stats.longest, *duration);
}

void statsTable_t::count(const traceRecord_t& record, const traceStep_t& step)
{
    const kind_t kind = kindOf(record);
    if (kind == kind_t::stamp)
        return;
    functionStats_t& stats = row(step.open->empty() ? "main" : step.open->back().name);
    ++(kind == kind_t::error ? stats.errors : kind == kind_t::note ? stats.notes : stats.messages);
}

void statsTable_t::end()
{
    for (auto& [thread, walking] : m_walking)
        while (!walking.calls.empty())
            if (const call_t call = pop(thread); call.counted)
                ++row(call.name).unfinished;
}

std::vector<functionStats_t> statsTable_t::rows() const
{
    std::vector<functionStats_t> rows;
    for (const auto& [name, stats] : m_rows)
        rows.push_back(stats);
    const auto key = [&](const functionStats_t& stats) -> int64_t {
        return m_order == "calls"     ? static_cast<int64_t>(stats.calls)
               : m_order == "errors"  ? static_cast<int64_t>(stats.errors)
               : m_order == "longest" ? stats.longest
               : m_order == "total"   ? stats.total
                                      : 0;
    };
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const auto& a, const auto& b) { return key(a) > key(b); });
    return rows;
}

void statsTable_t::finish()
{
    const auto cell = [&](auto value) { m_out << std::setw(11) << value; };
    for (const char* title : {"calls", "errors", "notes", "messages", "unfinished", "total ms",
                              "mean ms", "longest ms"})
        cell(title);
    m_out << "  function\n";
    for (const functionStats_t& stats : rows()) {
        cell(stats.calls);
        cell(stats.errors);
        cell(stats.notes);
        cell(stats.messages);
        cell(stats.unfinished);
        if (stats.timed) {
            cell(stats.total);
            cell(stats.total / static_cast<int64_t>(stats.timed));
            cell(stats.longest);
        } else {
            for (int i = 0; i < 3; ++i)
                cell("-");
        }
        m_out << "  " << printable(stats.name) << '\n';
    }
}

} // namespace vltrace
