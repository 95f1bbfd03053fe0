#include "csvlines.h"

#include "lines.h"

#include <string_view>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr std::string_view titles =
    "file,process,offset,date,time,thread,level,kind,depth,function,milliseconds,status,statusName,"
    "statusText,text\r\n";

// A field with a comma, a quote or a line end is quoted.
void appendField(std::string& out, std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        (out += text) += ',';
        return;
    }
    out += '"';
    for (const char c : text)
        out.append(c == '"' ? 2 : 1, c);
    out += "\",";
}

void appendField(std::string& out, std::integral auto number)
{
    appendNumber(out, number);
    out += ',';
}

void appendProcess(std::string& out, const source_t& source)
{
    if (source.process)
        appendNumber(out, *source.process);
    out += ',';
}

} // namespace

csvLines_t::csvLines_t(std::ostream& out) : m_out(out)
{
    m_out.text = titles;
}

void csvLines_t::takeDamage(const source_t& source, const traceDamage_t& damage,
                            const traceStep_t& step)
{
    std::string& out = m_out.text;
    appendField(out, source.shown);
    appendProcess(out, source);
    appendField(out, damage.offset);
    appendField(out, step.moment.day ? m_texts.date(step.moment) : std::string());
    appendField(out, step.moment.msOfDay ? m_texts.time(step.moment) : std::string());
    out += ",,damage,,,,,,,";
    appendField(out, damageText(damage));
    out.pop_back();
    out += "\r\n";
}

void csvLines_t::takeRecord(const traceEvent_t& event)
{
    if (!event.wanted)
        return;
    const traceRecord_t& record = event.record;
    const traceStep_t& step = event.step;
    std::string& out = m_out.text;
    appendField(out, event.source.shown);
    appendProcess(out, event.source);
    appendField(out, record.offset);
    appendField(out, step.moment.day ? m_texts.date(step.moment) : std::string());
    appendField(out, step.moment.msOfDay ? m_texts.time(step.moment) : std::string());
    appendField(out, record.thread);
    appendField(out, std::string_view(&record.level, 1));
    appendField(out, std::string_view(kindName(event.kind)));
    appendField(out, step.open.size());
    appendField(out, step.left           ? std::string_view(step.left->name)
                     : step.open.empty() ? std::string_view()
                                         : std::string_view(step.open.back().name));
    if (step.left)
        if (const auto duration = durationOf(step.left->entered, step.moment))
            appendNumber(out, *duration);
    out += ',';
    if (event.message.status.value_or(0) != 0) {
        const tools::statusInfo_t& info = statusOf(*event.message.status);
        appendField(out, info.hex);
        appendField(out, info.name);
        appendField(out, info.text);
    } else {
        out += ",,,";
    }
    appendField(out, event.message.text);
    out.pop_back();
    out += "\r\n";
    m_out.written();
}

} // namespace vltrace
