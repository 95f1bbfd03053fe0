#include "stats.h"

#include "formats/text/printable.h"
#include "shared/jsondocument.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <utility>

using namespace tracecore;

namespace vltrace {

statsTable_t::statsTable_t(std::string order, bool json, std::ostream& out)
    : m_order(std::move(order)), m_json(json), m_out(out)
{}

functionStats_t& statsTable_t::row(std::string_view name)
{
    if (const auto found = m_rows.find(name); found != m_rows.end())
        return found->second;
    return m_rows.try_emplace(std::string(name), functionStats_t{std::string(name)}).first->second;
}

statsTable_t::call_t statsTable_t::pop(thread_t& walking)
{
    const call_t call = walking.calls.back();
    walking.calls.pop_back();
    walking.open[call.stats] -= call.counted;
    return call;
}

void statsTable_t::begin(const source_t& source)
{
    m_walking.clear();
    m_files.push_back(source.name);
}

void statsTable_t::lose(const traceStep_t& step)
{
    for (const lostFunction_t& lost : step.lost)
        if (const call_t call = pop(m_walking[lost.thread]); call.counted)
            ++call.stats->unfinished;
}

void statsTable_t::takeDamage(const source_t&, const traceDamage_t&, const traceStep_t& step)
{
    lose(step);
}

void statsTable_t::takeRecord(const traceEvent_t& event)
{
    lose(event.step);
    const char level = event.record.level;
    if (level == levelEntry) {
        enter(event);
    } else if (level == levelExit) {
        if (event.step.left)
            leave(event);
    } else if (event.wanted && event.kind != kind_t::stamp) {
        const auto open = event.step.open;
        functionStats_t& stats = row(open.empty() ? "main" : open.back().name);
        ++(event.kind == kind_t::error  ? stats.errors
           : event.kind == kind_t::note ? stats.notes
                                        : stats.messages);
    }
}

void statsTable_t::enter(const traceEvent_t& event)
{
    thread_t& walking = m_walking[event.record.thread];
    functionStats_t& stats = row(event.record.text);
    size_t& open = walking.open[&stats];
    walking.calls.push_back({&stats, event.wanted, open > 0});
    open += event.wanted;
    stats.calls += event.wanted;
}

void statsTable_t::leave(const traceEvent_t& event)
{
    const call_t call = pop(m_walking[event.record.thread]);
    const auto duration = durationOf(event.step.left->entered, event.step.moment);
    if (!call.counted || !duration)
        return;
    functionStats_t& stats = *call.stats;
    ++stats.timed;
    stats.total += call.inner ? 0 : *duration;
    stats.longest = std::max(stats.longest, *duration);
}

void statsTable_t::end(const source_t&)
{
    for (auto& [thread, walking] : m_walking)
        while (!walking.calls.empty())
            if (const call_t call = pop(walking); call.counted)
                ++call.stats->unfinished;
}

// Functions of which the filter left nothing have no row.
std::vector<const functionStats_t*> statsTable_t::rows() const
{
    std::vector<const functionStats_t*> rows;
    for (const auto& [name, stats] : m_rows)
        if (stats.calls + stats.errors + stats.notes + stats.messages > 0)
            rows.push_back(&stats);
    const auto key = [&](const functionStats_t& stats) -> int64_t {
        return m_order == "calls"     ? static_cast<int64_t>(stats.calls)
               : m_order == "errors"  ? static_cast<int64_t>(stats.errors)
               : m_order == "longest" ? stats.longest
               : m_order == "total"   ? stats.total
                                      : 0;
    };
    std::ranges::sort(rows, [&](const auto* a, const auto* b) {
        return key(*a) != key(*b) ? key(*a) > key(*b) : a->name < b->name;
    });
    return rows;
}

void statsTable_t::finish()
{
    if (m_json)
        writeJson();
    else
        writeTable();
}

void statsTable_t::writeJson()
{
    CJsonDocument document(m_out, "vltrace-stats-1");
    document.BeginList("files");
    for (const std::string& file : m_files)
        document.Text(nullptr, file);
    document.EndList();
    document.BeginList("functions");
    for (const functionStats_t* stats : rows()) {
        document.BeginObject(nullptr);
        document.Text("name", stats->name);
        document.Number("calls", stats->calls);
        document.Number("errors", stats->errors);
        document.Number("notes", stats->notes);
        document.Number("messages", stats->messages);
        document.Number("unfinished", stats->unfinished);
        document.Number("timed", stats->timed);
        if (stats->timed > 0) {
            document.Number("totalMilliseconds", stats->total);
            document.Number("longestMilliseconds", stats->longest);
        }
        document.EndObject();
    }
    document.EndList();
}

void statsTable_t::writeTable()
{
    const auto cell = [&](auto value) { m_out << std::setw(11) << value; };
    for (const char* title : {"calls", "errors", "notes", "messages", "unfinished", "total ms",
                              "mean ms", "longest ms"})
        cell(title);
    m_out << "  function\n";
    for (const functionStats_t* const row : rows()) {
        const functionStats_t& stats = *row;
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
