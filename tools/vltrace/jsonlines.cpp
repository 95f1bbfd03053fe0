#include "jsonlines.h"

#include "filter.h"

using namespace tracecore;

namespace vltrace {

void addStatus(jsonObject_t& object, const message_t& message)
{
    if (!message.status || *message.status == 0)
        return;
    const tools::statusInfo_t& info = statusOf(*message.status);
    object.add("status", info.hex);
    if (!info.name.empty())
        object.add("statusName", info.name);
    if (!info.text.empty())
        object.add("statusText", info.text);
}

void jsonLines_t::takeHeader(const source_t& source, const traceHeader_t& header)
{
    {
        jsonObject_t object(m_out.text);
        object.add("file", source.shown);
        object.value("lines") += '[';
        for (const std::string& line : header.lines) {
            if (&line != &header.lines.front())
                m_out.text += ',';
            appendJsonString(m_out.text, line);
        }
        m_out.text += ']';
        if (!source.label.empty())
            object.add("process", source.label);
        object.add("type", "header");
    }
    m_out.text += '\n';
}

void jsonLines_t::takeDamage(const source_t& source, const traceDamage_t& damage,
                             const traceStep_t&)
{
    {
        jsonObject_t object(m_out.text);
        object.add("bytes", damage.bytes);
        object.add("file", source.shown);
        object.add("offset", damage.offset);
        if (!source.label.empty())
            object.add("process", source.label);
        object.add("reason", damage.reason);
        object.add("type", "damage");
    }
    m_out.text += '\n';
}

void jsonLines_t::takeRecord(const traceEvent_t& event)
{
    if (!event.wanted)
        return;
    write(event);
    m_out.text += '\n';
    m_out.written();
}

// The members are in the order of their names.
void jsonLines_t::write(const traceEvent_t& event)
{
    const traceRecord_t& record = event.record;
    const traceStep_t& step = event.step;
    jsonObject_t object(m_out.text);
    if (event.kind == kind_t::error && !step.open.empty()) {
        object.value("chain") += '[';
        const auto chain = innermost(step.open);
        for (const openFunction_t& function : chain) {
            if (&function != &chain.front())
                m_out.text += ',';
            appendJsonString(m_out.text, function.name);
        }
        m_out.text += ']';
    }
    if (!event.message.colour.empty())
        object.add("colour", event.message.colour);
    if (step.moment.day)
        object.add("date", m_texts.date(step.moment));
    object.add("depth", step.open.size());
    object.add("file", event.source.shown);
    if (step.left || !step.open.empty())
        object.add("function", step.left ? step.left->name : step.open.back().name);
    object.add("kind", kindName(event.kind));
    object.add("level", std::string_view(&record.level, 1));
    if (record.mended)
        object.addTrue("mended");
    if (step.left)
        if (const auto duration = durationOf(step.left->entered, step.moment))
            object.add("milliseconds", *duration);
    object.add("offset", record.offset);
    if (!event.source.label.empty())
        object.add("process", event.source.label);
    addStatus(object, event.message);
    object.add("text", event.message.text);
    object.add("thread", record.thread);
    if (step.moment.msOfDay)
        object.add("time", m_texts.time(step.moment));
    object.add("type", "record");
}

} // namespace vltrace
