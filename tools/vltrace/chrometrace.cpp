#include "chrometrace.h"

#include "jsonlines.h"

#include <utility>

using namespace tracecore;

namespace vltrace {

chromeTrace_t::chromeTrace_t(std::ostream& out) : m_out(out)
{
    m_out.text = "{\"displayTimeUnit\":\"ms\",\"traceEvents\":[";
}

std::string& chromeTrace_t::start()
{
    m_out.written();
    return m_out.text += std::exchange(m_first, false) ? "\n" : ",\n";
}

// The members are in the order of their names.
void chromeTrace_t::end(jsonObject_t& object, std::string_view name, const char* phase,
                        uint32_t thread, int64_t at)
{
    object.add("name", name);
    object.add("ph", phase);
    object.add("pid", m_pid);
    if (phase[0] == 'i')
        object.add("s", thread == 0 ? "p" : "t");
    object.add("tid", thread);
    object.add("ts", at);
}

void chromeTrace_t::begin(const source_t& source)
{
    callConsumer_t::begin(source);
    m_pid = source.process.value_or(1);
    while (!m_pids.insert(m_pid).second)
        ++m_pid;
    const std::pair<const char*, std::pair<const char*, std::string>> facts[] = {
        {"process_name", {"name", programOf(source.shown)}},
        {"process_labels", {"labels", source.shown}},
    };
    for (const auto& [name, fact] : facts) {
        jsonObject_t object(start());
        {
            jsonObject_t arguments(object.value("args"));
            arguments.add(fact.first, fact.second);
        }
        end(object, name, "M", 0, 0);
    }
}

void chromeTrace_t::enterThread(thread_t& thread)
{
    jsonObject_t object(start());
    {
        jsonObject_t arguments(object.value("args"));
        arguments.add("name", "thread " + threadText(thread.id));
    }
    end(object, "thread_name", "M", thread.id, 0);
}

void chromeTrace_t::enter(thread_t& thread, call_t& call)
{
    jsonObject_t object(start());
    end(object, call.name, "B", thread.id, call.from);
}

void chromeTrace_t::leave(thread_t& thread, call_t& call, int64_t to, bool finished)
{
    jsonObject_t object(start());
    if (!finished)
        jsonObject_t(object.value("args")).addTrue("unfinished");
    end(object, call.name, "E", thread.id, to);
}

void chromeTrace_t::mark(thread_t& thread, const traceEvent_t& event, int64_t at)
{
    const bool error = event.kind == kind_t::error;
    jsonObject_t object(start());
    {
        jsonObject_t arguments(object.value("args"));
        if (!event.message.colour.empty())
            arguments.add("colour", event.message.colour);
        arguments.add("level", std::string_view(&event.record.level, 1));
        addStatus(arguments, event.message);
        arguments.add("text", event.message.text);
    }
    object.add("cat", kindName(event.kind));
    if (error) {
        object.add("cname", "terrible");
        object.add("dur", 1);
    }
    end(object, event.message.text, error ? "X" : "i", thread.id, at);
}

void chromeTrace_t::damage(const traceDamage_t& item, int64_t at)
{
    jsonObject_t object(start());
    {
        jsonObject_t arguments(object.value("args"));
        arguments.add("bytes", item.bytes);
        arguments.add("offset", item.offset);
        arguments.add("reason", item.reason);
    }
    end(object, "damage", "i", 0, at);
}

void chromeTrace_t::finish()
{
    m_out.text += "\n]}\n";
    m_out.flush();
}

} // namespace vltrace
