#pragma once

#include "consumer.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vltrace {

// callConsumer_t turns the records of files, one after the other, into calls and what was written
// in them.
//
// Times are in microseconds since 1970-01-01 of the local clock. Each event of a thread comes at
// least one microsecond after the one before, also where the trace's milliseconds are the same or
// its clock goes back, so that the nesting shows; an error takes up a microsecond. A function without an exit ends with the last
// known event of its thread.
class callConsumer_t : public traceConsumer_i
{
public:
    void begin(const source_t& source) override;
    void takeDamage(const source_t& source, const tracecore::traceDamage_t& damage,
                    const tracecore::traceStep_t& step) override;
    void takeRecord(const traceEvent_t& event) override;
    void end(const source_t& source) override;

protected:
    struct call_t {
        std::string name;
        int64_t from = 0;
        int64_t inside = 0;  // time of the calls that it made
        uint64_t offset = 0; // of its entry in the file
        bool shown = false;  // the filter wanted its entry
        uint64_t tag = 0;    // the consumer's own
        size_t top = 0; // place, from 1, of the innermost one that is shown, up to this; 0: none
    };
    struct thread_t {
        uint32_t id = 0;
        std::vector<call_t> calls; // beyond depth: kept for the next entry
        size_t depth = 0;          // of the open ones, in step with the walker's
        int64_t last = INT64_MIN;  // the latest event

        // top is the innermost open call that is shown, outer the one that the innermost open call
        // is in; null if there is none.
        call_t* top() { return shownUpTo(depth); }
        call_t* outer() { return shownUpTo(depth - 1); }

    private:
        call_t* shownUpTo(size_t count)
        {
            const size_t place = count > 0 ? calls[count - 1].top : 0;
            return place > 0 ? &calls[place - 1] : nullptr;
        }
    };

    virtual void enterThread(thread_t&) {}
    virtual void enter(thread_t& thread, call_t& call) = 0;
    virtual void leave(thread_t& thread, call_t& call, int64_t to,
                       bool finished) = 0; // is open still
    virtual void mark(thread_t& thread, const traceEvent_t& event, int64_t at) = 0;
    virtual void damage(const tracecore::traceDamage_t&, int64_t) {}

private:
    int64_t stamp(thread_t& thread, const tracecore::traceMoment_t& moment) const;
    void close(thread_t& thread, int64_t to, bool finished);
    void lose(const tracecore::traceStep_t& step);
    thread_t& threadOf(uint32_t id);

    std::map<uint32_t, thread_t> m_threads;
    int64_t m_last = INT64_MIN; // the file's latest event
};

} // namespace vltrace
