#pragma once

#include "calls.h"
#include "textout.h"

#include <iosfwd>
#include <set>
#include <string>

namespace vltrace {

// chromeTrace_t writes the trace event format (JSON object form) that Perfetto, chrome://tracing
// and speedscope open: functions as B and E, errors as slices of a microsecond, since some viewers
// drop instant events, and messages, notes and damage as instant events. Every B has its E; that of
// a function without an exit says "unfinished".
class chromeTrace_t : public callConsumer_t
{
public:
    explicit chromeTrace_t(std::ostream& out);

    void begin(const source_t& source) override;
    void finish() override;

private:
    void enterThread(thread_t& thread) override;
    void enter(thread_t& thread, call_t& call) override;
    void leave(thread_t& thread, call_t& call, int64_t to, bool finished) override;
    void mark(thread_t& thread, const traceEvent_t& event, int64_t at) override;
    void damage(const tracecore::traceDamage_t& item, int64_t at) override;

    // start begins an event: its text is appended to, up to end.
    std::string& start();
    void end(jsonObject_t& object, std::string_view name, const char* phase, uint32_t thread,
             int64_t at);
    using callConsumer_t::end;

    textOut_t m_out;
    std::set<uint32_t> m_pids;
    uint32_t m_pid = 0;
    bool m_first = true;
};

} // namespace vltrace
