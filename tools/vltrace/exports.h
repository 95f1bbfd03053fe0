#pragma once

#include "consumer.h"
#include "filter.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Json {
class Value;
}

namespace vltrace {

// jsonLines_t writes JSON Lines: one object for each header, damage and wanted record.
class jsonLines_t : public traceConsumer_i
{
public:
    jsonLines_t(filter_t filter, std::ostream& out);

    void begin(const std::string& name) override { m_file = name; }
    void take(const tracecore::traceItem_t& item, const tracecore::traceStep_t& step) override;

private:
    filter_t m_filter;
    std::ostream& m_out;
    std::string m_file;
};

// chromeTrace_t writes the trace event format (JSON object form) that Perfetto, chrome://tracing
// and speedscope open: functions as B and E, messages, errors and damage as instant events.
//
// ts is in microseconds since 1970-01-01 of the local clock. Each event of a thread comes at least
// one microsecond after the one before, also where the trace's milliseconds are the same or its
// clock goes back, so that viewers that sort keep the nesting. Every B has its E: a function
// without an exit ends with the last known event of its thread, and says "unfinished".
class chromeTrace_t : public traceConsumer_i
{
public:
    chromeTrace_t(filter_t filter, std::ostream& out);

    void begin(const std::string& name) override;
    void take(const tracecore::traceItem_t& item, const tracecore::traceStep_t& step) override;
    void end() override;
    void finish() override;

private:
    struct span_t {
        std::string name;
        bool shown;
    };
    struct thread_t {
        std::vector<span_t> spans; // in step with the walker's open functions
        int64_t last = INT64_MIN;  // ts of the last event
    };
    void takeRecord(const tracecore::traceRecord_t& record, const tracecore::traceStep_t& step);
    int64_t stamp(thread_t& thread, const tracecore::traceMoment_t& moment) const;
    void close(uint32_t id, thread_t& thread, int64_t ts, bool unfinished);
    void write(const Json::Value& event);
    Json::Value event(const char* phase, const std::string& name, uint32_t thread,
                      int64_t ts) const;

    filter_t m_filter;
    std::ostream& m_out;
    std::map<uint32_t, thread_t> m_threads;
    std::set<uint32_t> m_pids;
    uint32_t m_pid = 0;
    int64_t m_last = INT64_MIN; // ts of the file's latest event
    bool m_first = true;
};

} // namespace vltrace
