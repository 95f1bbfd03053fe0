#include "viewpage.h"

#include "lines.h"
#include "pageparts.h"
#include "shared/jsonstring.h"
#include "textout.h"

#include <algorithm>
#include <ostream>

using namespace tracecore;

namespace vltrace {

namespace {

// writeList writes a list; append appends one item of it.
void writeList(std::string& out, const auto& items, auto append)
{
    char before = '[';
    for (const auto& item : items) {
        out += std::exchange(before, ',');
        append(item);
    }
    out += before == '[' ? "[]" : "]";
}

// writeColumn writes a list with one number for each item.
void writeColumn(jsonObject_t& object, std::string_view name, const auto& items, auto numberOf)
{
    std::string& out = object.value(name);
    writeList(out, items, [&](const auto& item) { appendNumber(out, numberOf(item)); });
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

uint32_t viewPage_t::stringOf(std::string_view text)
{
    const auto number = static_cast<uint32_t>(m_strings.size());
    const auto [place, isNew] = m_stringNumbers.try_emplace(std::string(text), number);
    if (isNew)
        m_strings.push_back(&place->first);
    return place->second;
}

uint32_t viewPage_t::statusNumber(const message_t& message)
{
    if (message.status.value_or(0) == 0)
        return 0;
    const auto number = static_cast<uint32_t>(m_statuses.size() + 1);
    const auto [place, isNew] = m_statusNumbers.try_emplace(*message.status, number);
    if (isNew)
        m_statuses.push_back(*message.status);
    return place->second;
}

void viewPage_t::enter(thread_t& thread, openCall_t& call)
{
    const openCall_t* const outer = thread.outer();
    const size_t parent = outer ? outer->tag : 0;
    m_calls.push_back(
        {laneOf(thread.id), stringOf(call.name), call.from, call.from, parent, false});
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
    m_marks.push_back({laneOf(thread.id), event.kind == kind_t::note ? 'n' : event.record.level,
                       stringOf(event.message.text), statusNumber(event.message), at,
                       call ? call->tag : 0});
}

void viewPage_t::damage(const traceDamage_t& item, int64_t at)
{
    m_marks.push_back({laneOf(-1), 'x', stringOf(damageText(item)), 0, at, 0});
}

void viewPage_t::writeFiles(std::string& text) const
{
    writeList(text, m_files, [&](const source_t& file) {
        jsonObject_t object(text, true);
        object.add("name", file.shown);
        object.add("program", programOf(file.shown));
        if (file.process)
            object.add("process", *file.process);
    });
}

void viewPage_t::writeCalls(std::string& text, int64_t base) const
{
    jsonObject_t object(text);
    writeColumn(object, "lane", m_calls, [](const call_t& call) { return call.lane; });
    writeColumn(object, "name", m_calls, [](const call_t& call) { return call.name; });
    writeColumn(object, "from", m_calls,
                deltas([](const call_t& call) { return call.from; }, base));
    writeColumn(object, "took", m_calls, [](const call_t& call) { return call.to - call.from; });
    writeColumn(object, "parent", m_calls, [number = size_t{0}](const call_t& call) mutable {
        ++number;
        return call.parent == 0 ? 0 : number - call.parent; // how far back it is
    });
    writeColumn(object, "finished", m_calls,
                [](const call_t& call) { return call.finished ? 1 : 0; });
}

void viewPage_t::writeMarks(std::string& text, int64_t base) const
{
    jsonObject_t object(text);
    writeColumn(object, "lane", m_marks, [](const mark_t& mark) { return mark.lane; });
    writeColumn(object, "text", m_marks, [](const mark_t& mark) { return mark.text; });
    writeColumn(object, "status", m_marks, [](const mark_t& mark) { return mark.status; });
    writeColumn(object, "at", m_marks, deltas([](const mark_t& mark) { return mark.at; }, base));
    writeColumn(object, "call", m_marks, [](const mark_t& mark) { return mark.call; });
    std::string kinds;
    for (const mark_t& mark : m_marks)
        kinds += mark.kind;
    object.add("kind", kinds);
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
    writeFiles(object.value("files"));
    writeList(object.value("lanes"), m_lanes, [&](const auto& lane) {
        appendNumber(out.text += '[', lane.first);
        appendNumber(out.text += ',', lane.second);
        out.text += ']';
    });
    writeList(object.value("strings"), m_strings, [&](const std::string* string) {
        appendJsonString(out.text, *string, true);
        out.written();
    });
    writeList(object.value("statuses"), m_statuses, [&](int32_t status) {
        const tools::statusInfo_t& info = statusOf(status);
        appendJsonString(out.text += '[', info.hex, true);
        appendJsonString(out.text += ',', info.name, true);
        appendJsonString(out.text += ',', info.text, true);
        out.text += ']';
    });
    object.add("base", base);
    writeCalls(object.value("calls"), base);
    writeMarks(object.value("marks"), base);
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
