#include "viewpage.h"

#include "lines.h"
#include "pageparts.h"
#include "shared/jsonstring.h"

#include <algorithm>
#include <ostream>

using namespace tracecore;

namespace vltrace {

namespace {

// writeList writes a list; append appends one item of it.
void writeList(textOut_t& out, const auto& items, auto append)
{
    char before = '[';
    for (const auto& item : items) {
        out.text += std::exchange(before, ',');
        append(item);
        out.written();
    }
    out.text += before == '[' ? "[]" : "]";
}

// writeColumn writes a list with one number for each item.
void writeColumn(textOut_t& out, jsonObject_t& object, std::string_view name, const auto& items,
                 auto numberOf)
{
    object.value(name);
    writeList(out, items, [&](const auto& item) { appendNumber(out.text, numberOf(item)); });
}

// deltas makes of a column of times one of their distances, which are shorter.
auto deltas(auto timeOf, int64_t base)
{
    return [timeOf, last = base](const auto& item) mutable {
        return timeOf(item) - std::exchange(last, timeOf(item));
    };
}

} // namespace

void viewPage_t::begin(const source_t& source)
{
    callConsumer_t::begin(source);
    m_files.push_back(source);
}

uint32_t viewPage_t::laneOf(int64_t thread)
{
    const std::pair lane(m_files.size() - 1, thread);
    const auto number = static_cast<uint32_t>(m_lanes.size());
    const auto [place, isNew] = m_laneNumbers.try_emplace(lane, number);
    if (isNew)
        m_lanes.push_back(lane);
    return place->second;
}

void viewPage_t::enter(thread_t& thread, openCall_t& call)
{
    const openCall_t* const outer = thread.outer();
    const auto parent = static_cast<uint32_t>(outer ? outer->tag : 0);
    m_calls.push_back(
        {call.from, call.from, laneOf(thread.id), m_strings.numberOf(call.name), parent, false});
    call.tag = m_calls.size();
}

void viewPage_t::leave(thread_t&, openCall_t& call, int64_t to, bool finished)
{
    call_t& made = m_calls[call.tag - 1];
    made.to = to;
    made.finished = finished;
}

void viewPage_t::mark(thread_t& thread, const traceEvent_t& event, int64_t at)
{
    if (event.kind == kind_t::stamp)
        return;
    const openCall_t* const call = thread.top();
    m_marks.push_back({at, laneOf(thread.id), m_strings.numberOf(event.message.text),
                       event.message.status.value_or(0),
                       static_cast<uint32_t>(call ? call->tag : 0),
                       event.kind == kind_t::note ? 'n' : event.record.level});
}

void viewPage_t::damage(const traceDamage_t& item, int64_t at)
{
    m_marks.push_back({at, laneOf(-1), m_strings.numberOf(damageText(item)), 0, 0, 'x'});
}

// statuses gives each status of a mark once, in their order.
std::vector<int32_t> viewPage_t::statuses() const
{
    std::vector<int32_t> all;
    for (const mark_t& mark : m_marks)
        if (mark.status != 0)
            all.push_back(mark.status);
    std::ranges::sort(all);
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

void viewPage_t::writeFiles(textOut_t& out) const
{
    writeList(out, m_files, [&](const source_t& file) {
        jsonObject_t object(out.text, true);
        object.add("name", file.shown);
        object.add("program", programOf(file.shown));
        if (file.process)
            object.add("process", *file.process);
    });
}

void viewPage_t::writeCalls(textOut_t& out, int64_t base) const
{
    jsonObject_t object(out.text);
    const auto column = [&](std::string_view name, auto numberOf) {
        writeColumn(out, object, name, m_calls, numberOf);
    };
    column("lane", [](const call_t& call) { return call.lane; });
    column("name", [](const call_t& call) { return call.name; });
    column("from", deltas([](const call_t& call) { return call.from; }, base));
    column("took", [](const call_t& call) { return call.to - call.from; });
    column("parent", [number = uint32_t{0}](const call_t& call) mutable {
        ++number;
        return call.parent == 0 ? 0 : number - call.parent; // how far back it is
    });
    column("finished", [](const call_t& call) { return call.finished ? 1 : 0; });
}

// statuses: those of the list, of which a mark has the number, from 1; 0: none
void viewPage_t::writeMarks(textOut_t& out, int64_t base,
                            const std::vector<int32_t>& statuses) const
{
    jsonObject_t object(out.text);
    const auto column = [&](std::string_view name, auto numberOf) {
        writeColumn(out, object, name, m_marks, numberOf);
    };
    column("lane", [](const mark_t& mark) { return mark.lane; });
    column("text", [](const mark_t& mark) { return mark.text; });
    column("status", [&](const mark_t& mark) {
        const auto place = std::ranges::lower_bound(statuses, mark.status);
        return mark.status == 0 ? 0 : place - statuses.begin() + 1;
    });
    column("at", deltas([](const mark_t& mark) { return mark.at; }, base));
    column("call", [](const mark_t& mark) { return mark.call; });
    object.value("kind") += '"';
    for (const mark_t& mark : m_marks) {
        out.text += mark.kind;
        out.written();
    }
    out.text += '"';
}

void viewPage_t::writeData()
{
    int64_t base = INT64_MAX;
    for (const call_t& call : m_calls)
        base = std::min(base, call.from);
    for (const mark_t& mark : m_marks)
        base = std::min(base, mark.at);
    base = events() == 0 ? 0 : base;

    textOut_t out(m_out);
    jsonObject_t object(out.text);
    object.value("files");
    writeFiles(out);
    object.value("lanes");
    writeList(out, m_lanes, [&](const auto& lane) {
        appendNumber(out.text += '[', lane.first);
        appendNumber(out.text += ',', lane.second);
        out.text += ']';
    });
    object.value("strings");
    writeList(out, m_strings.all(),
              [&](std::string_view string) { appendJsonString(out.text, string, true); });
    const std::vector<int32_t> listed = statuses();
    object.value("statuses");
    writeList(out, listed, [&](int32_t status) {
        const tools::statusInfo_t& info = statusOf(status);
        appendJsonString(out.text += '[', info.hex, true);
        appendJsonString(out.text += ',', info.name, true);
        appendJsonString(out.text += ',', info.text, true);
        out.text += ']';
    });
    object.add("base", base);
    object.value("calls");
    writeCalls(out, base);
    object.value("marks");
    writeMarks(out, base, listed);
}

void viewPage_t::finish()
{
    std::string_view page = pageHtml;
    const std::pair<std::string_view, std::string_view> parts[] = {
        {"{{style}}", pageStyle}, {"{{data}}", {}}, {"{{script}}", pageScript}};
    for (const auto& [mark, part] : parts) {
        const size_t at = page.find(mark);
        m_out << page.substr(0, at) << part;
        if (part.empty())
            writeData();
        page.remove_prefix(at + mark.size());
    }
    m_out << page;
}

} // namespace vltrace
