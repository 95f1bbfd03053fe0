#pragma once

#include "consumer.h"

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
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

// statsTable_t counts over all files, one after the other, and writes a table at the end.
class statsTable_t : public traceConsumer_i
{
public:
    // order: "name", "calls", "errors", "total" or "longest"; numbers from the highest down
    // json:  a document in place of the table
    statsTable_t(std::string order, bool json, std::ostream& out);

    void begin(const source_t& source) override;
    void takeDamage(const source_t& source, const tracecore::traceDamage_t& damage,
                    const tracecore::traceStep_t& step) override;
    void takeRecord(const traceEvent_t& event) override;
    void end(const source_t& source) override;
    void finish() override;

private:
    struct call_t {
        functionStats_t* stats;
        bool counted; // whether the filter wanted its entry
        bool inner;   // a counted one of the same name was open
    };
    struct thread_t {
        std::vector<call_t> calls; // in step with the walker's open functions
        std::unordered_map<const functionStats_t*, size_t> open; // counted ones
    };
    void lose(const tracecore::traceStep_t& step);
    void enter(const traceEvent_t& event);
    void leave(const traceEvent_t& event);
    functionStats_t& row(std::string_view name);
    call_t pop(thread_t& walking);
    std::vector<const functionStats_t*> rows() const; // in the order asked for
    void writeTable();
    void writeJson();

    std::string m_order;
    bool m_json;
    std::ostream& m_out;
    std::map<std::string, functionStats_t, std::less<>> m_rows;
    std::unordered_map<uint32_t, thread_t> m_walking;
    std::vector<std::string> m_files;
};

} // namespace vltrace
