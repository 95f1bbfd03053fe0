#pragma once

#include "consumer.h"
#include "filter.h"

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace vltrace {

// functionStats_t sums up the recorded calls of one function; a call in which nothing was traced
// left no record.
struct functionStats_t {
    std::string name;
    uint64_t calls = 0;
    uint64_t errors = 0;     // written while it was the innermost open function
    uint64_t notes = 0;      // E records of status 0, likewise
    uint64_t messages = 0;   // U and D records, likewise
    uint64_t unfinished = 0; // calls without an exit
    uint64_t timed = 0;      // calls whose duration is known
    int64_t total = 0;       // milliseconds; a call inside one of the same name is not added again
    int64_t longest = 0;
};

// statsTable_t counts over all files and writes a table at the end.
class statsTable_t : public traceConsumer_i
{
public:
    // order: "name", "calls", "errors", "total" or "longest"; numbers from the highest down
    statsTable_t(filter_t filter, std::string order, std::ostream& out);

    void begin(const std::string&) override { m_walking.clear(); }
    void take(const tracecore::traceItem_t& item, const tracecore::traceStep_t& step) override;
    void end() override;
    void finish() override;

    std::vector<functionStats_t> rows() const; // in the order asked for

private:
    struct call_t {
        std::string name;
        bool counted; // whether the filter wanted its entry
        bool inner;   // a function of the same name was open
    };
    struct thread_t {
        std::vector<call_t> calls; // in step with the walker's open functions
        std::map<std::string, size_t> open;
    };
    void enter(const tracecore::traceRecord_t& record, bool wanted);
    void leave(const tracecore::traceRecord_t& record, const tracecore::traceStep_t& step);
    void count(const tracecore::traceRecord_t& record, const tracecore::traceStep_t& step);
    functionStats_t& row(const std::string& name);
    call_t pop(uint32_t thread);

    filter_t m_filter;
    std::string m_order;
    std::ostream& m_out;
    std::map<std::string, functionStats_t> m_rows;
    std::map<uint32_t, thread_t> m_walking;
};

} // namespace vltrace
