#include "otlp.h"

#include <algorithm>
#include <string_view>
#include <utility>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t mostEvents = 1000; // of one span

uint64_t mixed(uint64_t value)
{
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
    value = (value ^ value >> 27) * 0x94D049BB133111EB;
    return value ^ value >> 31;
}

void appendHex(std::string& out, uint64_t value)
{
    static constexpr char digits[] = "0123456789abcdef";
    for (int shift = 60; shift >= 0; shift -= 4)
        out += digits[value >> shift & 0xF];
}

void addAttribute(std::string& list, std::string_view key, std::string_view text)
{
    if (text.empty())
        return;
    list += list.empty() || list.back() == '[' ? "" : ",";
    jsonObject_t attribute(list);
    attribute.add("key", key);
    jsonObject_t(attribute.value("value")).add("stringValue", text);
}

// The encoding has numbers of 64 bits as strings.
void addAttribute(std::string& list, std::string_view key, int64_t number)
{
    list += list.empty() || list.back() == '[' ? "" : ",";
    jsonObject_t attribute(list);
    attribute.add("key", key);
    jsonObject_t(attribute.value("value")).add("intValue", std::to_string(number));
}

// valueOf gives what follows a mark at the beginning of one of the header's lines.
std::string_view valueOf(const traceHeader_t& header, std::string_view mark)
{
    for (const std::string& line : header.lines)
        if (line.starts_with(mark))
            return std::string_view(line).substr(mark.size());
    return {};
}

} // namespace

otlpTrace_t::otlpTrace_t(int utcOffset, std::ostream& out) : m_utcOffset(utcOffset), m_out(out)
{
    m_out.text = "{\"resourceSpans\":[";
}

uint64_t otlpTrace_t::hash(uint64_t value) const
{
    const uint64_t result = mixed(m_seed + value * 0x9E3779B97F4A7C15);
    return result ? result : 1;
}

void otlpTrace_t::addTime(jsonObject_t& object, std::string_view name, int64_t at) const
{
    const int64_t utc = at - int64_t{m_utcOffset} * 60'000'000;
    object.add(name, std::to_string(std::max<int64_t>(utc, 0)) + (utc > 0 ? "000" : ""));
}

void otlpTrace_t::begin(const source_t& source)
{
    callConsumer_t::begin(source);
    m_spans.clear();
    m_loose = 0;
    m_open = false;
    const std::string file = source.shown.substr(source.shown.find_last_of("/\\") + 1);
    m_seed = 0xCBF29CE484222325; // FNV-1a
    for (const char c : file)
        m_seed = (m_seed ^ static_cast<uint8_t>(c)) * 0x100000001B3;
    m_resource.clear();
    addAttribute(m_resource, "service.name", "VLOnlineIDs");
    addAttribute(m_resource, "process.executable.name", programOf(source.shown));
    if (source.process)
        addAttribute(m_resource, "process.pid", *source.process);
    addAttribute(m_resource, "log.file.name", file);
    m_scope = "{\"name\": \"tracecore\"}";
}

void otlpTrace_t::takeHeader(const source_t&, const traceHeader_t& header)
{
    addAttribute(m_resource, "host.name", valueOf(header, "Machine name: "));
    addAttribute(m_resource, "service.version", valueOf(header, "FileVersion: "));
    m_scope.clear();
    jsonObject_t scope(m_scope);
    scope.add("name", "tracecore");
    if (const auto version = valueOf(header, "Trace Ver: "); !version.empty())
        scope.add("version", version);
}

void otlpTrace_t::openResource()
{
    if (std::exchange(m_open, true))
        return;
    m_out.text += std::exchange(m_firstResource, false) ? "\n" : ",\n";
    m_out.text += "{\"resource\": {\"attributes\": [" + m_resource + "]},\"scopeSpans\": [{" +
                  "\"scope\": " + m_scope + ",\"spans\": [";
    m_firstSpan = true;
}

void otlpTrace_t::writeSpan(const std::string& name, int64_t from, int64_t to, uint32_t thread,
                            const span_t& span, bool finished)
{
    openResource();
    const id_t& id = span.id;
    m_out.text += std::exchange(m_firstSpan, false) ? "\n" : ",\n";
    jsonObject_t object(m_out.text);
    object.value("traceId") += '"';
    appendHex(m_out.text, mixed(id.trace));
    appendHex(m_out.text, id.trace);
    m_out.text += '"';
    object.value("spanId") += '"';
    appendHex(m_out.text, id.span);
    m_out.text += '"';
    if (id.parent) {
        object.value("parentSpanId") += '"';
        appendHex(m_out.text, id.parent);
        m_out.text += '"';
    }
    object.add("name", name);
    object.add("kind", 1);
    addTime(object, "startTimeUnixNano", from);
    addTime(object, "endTimeUnixNano", to);
    addAttribute(object.value("attributes") += '[', "thread.id", thread);
    if (!finished)
        addAttribute(m_out.text, "unfinished", "true");
    m_out.text += ']';
    if (span.count > 0)
        (object.value("events") += '[') += span.events + ']';
    jsonObject_t status(object.value("status"));
    if (span.failed)
        status.add("code", 2);
}

void otlpTrace_t::enter(thread_t& thread, call_t& call)
{
    call.tag = ++m_tag;
    id_t& id = m_spans[call.tag].id;
    id.span = id.trace = hash(call.offset);
    if (const call_t* const outer = thread.outer()) {
        id.trace = m_spans[outer->tag].id.trace;
        id.parent = hash(outer->offset);
    }
}

void otlpTrace_t::leave(thread_t& thread, call_t& call, int64_t to, bool finished)
{
    span_t& span = m_spans[call.tag];
    span.failed = span.failed || span.failedBefore;
    writeSpan(call.name, call.from, to, thread.id, span, finished);
    m_spans.erase(call.tag);
    m_out.written();
}

void otlpTrace_t::appendEvent(span_t& span, const traceEvent_t& event, int64_t at) const
{
    if (span.count++ == 0)
        span.from = at;
    else
        span.events += ',';
    span.to = at;
    jsonObject_t object(span.events);
    addTime(object, "timeUnixNano", at);
    object.add("name", event.message.text.empty() ? kindName(event.kind) : event.message.text);
    std::string& list = object.value("attributes") += '[';
    addAttribute(list, "trace.kind", kindName(event.kind));
    if (event.message.status.value_or(0) != 0) {
        const tools::statusInfo_t& info = statusOf(*event.message.status);
        addAttribute(list, "status", info.hex);
        addAttribute(list, "status.name", info.name);
        addAttribute(list, "status.text", info.text);
    }
    list += ']';
}

// Events of a call go into a child, those outside of all calls into a trace of their own.
void otlpTrace_t::writeEvents(uint32_t thread, bool loose, span_t& span)
{
    const id_t id = span.id;
    const uint64_t own = hash(~++m_loose);
    span.id = loose ? id_t{own, own, 0} : id_t{id.trace, own, id.span};
    writeSpan("events", span.from, span.to, thread, span);
    m_out.written();
    const bool failed = span.failed || span.failedBefore;
    span = {};
    span.id = id;
    span.failedBefore = failed;
}

void otlpTrace_t::mark(thread_t& thread, const traceEvent_t& event, int64_t at)
{
    const call_t* const call = thread.top();
    span_t loose;
    span_t& span = call ? m_spans[call->tag] : loose;
    span.failed = span.failed || event.kind == kind_t::error;
    appendEvent(span, event, at);
    if (!call || span.count >= mostEvents)
        writeEvents(thread.id, !call, span);
}

void otlpTrace_t::end(const source_t& source)
{
    callConsumer_t::end(source);
    if (m_open)
        m_out.text += "\n]}]}";
}

void otlpTrace_t::finish()
{
    m_out.text += "\n]}\n";
    m_out.flush();
}

} // namespace vltrace
