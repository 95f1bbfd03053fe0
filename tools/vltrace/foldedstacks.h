#pragma once

#include "calls.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>

namespace vltrace {

// foldedStacks_t writes folded stacks, which flame graphs are made of: a line for each chain of
// functions with the microseconds that it took by itself. A call takes at least one, so that those
// within the clock's millisecond are there.
class foldedStacks_t : public callConsumer_t
{
public:
    explicit foldedStacks_t(std::ostream& out) : m_out(out) {}

    void begin(const source_t& source) override;
    void finish() override;

private:
    void enter(thread_t&, call_t&) override {}
    void leave(thread_t& thread, call_t& call, int64_t to, bool finished) override;
    void mark(thread_t&, const traceEvent_t&, int64_t) override {}

    std::ostream& m_out;
    std::string m_program;
    std::string m_stack; // scratch
    std::map<std::string, int64_t> m_times;
};

} // namespace vltrace
