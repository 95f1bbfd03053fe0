#include "exports.h"

#include "shared/jsontext.h"
#include "shared/statusnames.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <utility>

using namespace tracecore;

namespace vltrace {

namespace {

// kindName is the word for a record in both formats.
const char* kindName(const traceRecord_t& record)
{
    switch (kindOf(record)) {
    case kind_t::error:
        return "error";
    case kind_t::note:
        return "note";
    case kind_t::message:
        return "message";
    case kind_t::call:
        return "call";
    default:
        return "stamp";
    }
}

Json::Value jsonNumber(uint64_t number)
{
    return Json::Value(number);
}

void addMessage(Json::Value& object, const message_t& message)
{
    object["text"] = message.text;
    if (!message.colour.empty())
        object["colour"] = message.colour;
    if (!message.status || *message.status == 0)
        return;
    const tools::statusInfo_t info = tools::describeStatus(*message.status);
    object["status"] = info.hex;
    if (!info.name.empty())
        object["statusName"] = info.name;
    if (!info.text.empty())
        object["statusText"] = info.text;
}

// processId reads the process id out of a stamped file name, which ends in ~~session.process.trc3.
std::optional<uint32_t> processId(const std::string& name)
{
    const size_t stamp = name.rfind("~~");
    const size_t dot = stamp == std::string::npos ? stamp : name.find('.', stamp);
    uint32_t pid = 0;
    if (dot == std::string::npos)
        return std::nullopt;
    const auto [end, error] =
        std::from_chars(name.data() + dot + 1, name.data() + name.size(), pid);
    return error == std::errc() && pid != 0 ? std::optional(pid) : std::nullopt;
}

} // namespace

jsonLines_t::jsonLines_t(filter_t filter, std::ostream& out)
    : m_filter(std::move(filter)), m_out(out)
{}

void jsonLines_t::take(const traceItem_t& item, const traceStep_t& step)
{
    Json::Value object(Json::objectValue);
    object["file"] = m_file;
    if (const auto* header = std::get_if<traceHeader_t>(&item)) {
        object["type"] = "header";
        object["lines"] = Json::Value(Json::arrayValue);
        for (const std::string& line : header->lines)
            object["lines"].append(line);
    } else if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
        object["type"] = "damage";
        object["offset"] = jsonNumber(damage->offset);
        object["bytes"] = jsonNumber(damage->bytes);
        object["reason"] = damage->reason;
    } else if (const auto* record = std::get_if<traceRecord_t>(&item)) {
        if (!m_filter.wants(*record, step))
            return;
        object["type"] = "record";
        object["offset"] = jsonNumber(record->offset);
        object["thread"] = record->thread;
        object["level"] = std::string(1, record->level);
        object["kind"] = kindName(*record);
        object["depth"] = jsonNumber(step.open->size());
        if (step.moment.day)
            object["date"] = dateText(step.moment);
        if (step.moment.msOfDay)
            object["time"] = timeText(step.moment);
        if (record->mended)
            object["mended"] = true;
        if (!step.open->empty())
            object["function"] = step.open->back().name;
        addMessage(object, messageOf(*record));
        if (kindOf(*record) == kind_t::error)
            for (const openFunction_t& function : innermost(*step.open))
                object["chain"].append(function.name);
        if (step.left) {
            object["function"] = step.left->name;
            if (const auto duration = durationOf(step.left->entered, step.moment))
                object["milliseconds"] = *duration;
        }
    }
    m_out << jsonText(object, false) << '\n';
}

chromeTrace_t::chromeTrace_t(filter_t filter, std::ostream& out)
    : m_filter(std::move(filter)), m_out(out)
{
    m_out << "{\"displayTimeUnit\":\"ms\",\"traceEvents\":[";
}

Json::Value chromeTrace_t::event(const char* phase, const std::string& name, uint32_t thread,
                                 int64_t ts) const
{
    Json::Value event(Json::objectValue);
    event["name"] = name;
    event["ph"] = phase;
    event["pid"] = m_pid;
    event["tid"] = thread;
    event["ts"] = ts;
    return event;
}

void chromeTrace_t::write(const Json::Value& event)
{
    m_out << (std::exchange(m_first, false) ? "\n" : ",\n") << jsonText(event, false);
}

void chromeTrace_t::begin(const std::string& name)
{
    m_threads.clear();
    m_last = INT64_MIN;
    m_pid = processId(name).value_or(1);
    while (!m_pids.insert(m_pid).second)
        ++m_pid;
    Json::Value process = event("M", "process_name", 0, 0);
    process["args"]["name"] = name;
    write(process);
}

int64_t chromeTrace_t::stamp(thread_t& thread, const traceMoment_t& moment) const
{
    const int64_t known =
        moment.msOfDay ? moment.milliseconds() * 1000 : std::max<int64_t>(m_last, 0);
    return thread.last = thread.last == INT64_MIN ? known : std::max(known, thread.last + 1);
}

void chromeTrace_t::close(uint32_t id, thread_t& thread, int64_t ts, bool unfinished)
{
    const span_t span = std::move(thread.spans.back());
    thread.spans.pop_back();
    if (!span.shown)
        return;
    Json::Value ending = event("E", span.name, id, ts);
    if (unfinished)
        ending["args"]["unfinished"] = true;
    write(ending);
}

void chromeTrace_t::take(const traceItem_t& item, const traceStep_t& step)
{
    for (const lostFunction_t& lost : step.lost) {
        thread_t& thread = m_threads[lost.thread];
        close(lost.thread, thread, ++thread.last, true);
    }
    if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
        Json::Value instant = event("i", "damage", 0, std::max<int64_t>(m_last, 0));
        instant["s"] = "p";
        instant["args"]["offset"] = jsonNumber(damage->offset);
        instant["args"]["bytes"] = jsonNumber(damage->bytes);
        instant["args"]["reason"] = damage->reason;
        write(instant);
    } else if (const auto* record = std::get_if<traceRecord_t>(&item)) {
        takeRecord(*record, step);
    }
}

void chromeTrace_t::takeRecord(const traceRecord_t& record, const traceStep_t& step)
{
    const bool wanted = m_filter.wants(record, step);
    const auto [place, isNew] = m_threads.try_emplace(record.thread);
    thread_t& thread = place->second;
    if (isNew) {
        Json::Value named = event("M", "thread_name", record.thread, 0);
        named["args"]["name"] = "thread " + threadText(record.thread);
        write(named);
    }
    switch (record.level) {
    case levelEntry:
        thread.spans.push_back({record.text, wanted});
        if (const int64_t ts = stamp(thread, step.moment); wanted)
            write(event("B", record.text, record.thread, ts));
        break;
    case levelExit:
        if (step.left)
            close(record.thread, thread, stamp(thread, step.moment), false);
        break;
    case levelTime:
    case levelDate:
        return;
    default:
        if (wanted) {
            const message_t message = messageOf(record);
            Json::Value instant =
                event("i", message.text, record.thread, stamp(thread, step.moment));
            instant["s"] = "t";
            instant["cat"] = kindName(record);
            instant["args"]["level"] = std::string(1, record.level);
            addMessage(instant["args"], message);
            write(instant);
        }
    }
    m_last = std::max(m_last, thread.last);
}

void chromeTrace_t::end()
{
    for (auto& [id, thread] : m_threads)
        while (!thread.spans.empty())
            close(id, thread, ++thread.last, true);
}

void chromeTrace_t::finish()
{
    m_out << "\n]}\n";
}

} // namespace vltrace
