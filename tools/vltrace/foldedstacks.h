#pragma once

#include "calls.h"
#include "stringtable.h"

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string_view>

namespace vltrace {

// foldedStacks_t writes folded stacks, which flame graphs are made of: a line for each chain of
// functions with the microseconds that it took by itself. A call takes at least one, so that those
// within the clock's millisecond are there. Takes 36 bytes for each chain, and the names.
class foldedStacks_t : public callConsumer_t
{
public:
    explicit foldedStacks_t(std::ostream& out) : m_out(out) {}

    void begin(const source_t& source) override;
    void finish() override;

private:
    // chain_t is a program, or a function below another chain.
    struct chain_t {
        int64_t time;
        uint32_t outer;
        uint32_t name;
        uint32_t depth; // 0 for a program
    };
    void enter(thread_t& thread, call_t& call) override;
    void leave(thread_t& thread, call_t& call, int64_t to, bool finished) override;
    void mark(thread_t&, const traceEvent_t&, int64_t) override {}

    uint32_t chainOf(uint32_t outer, uint32_t depth, std::string_view name);

    std::ostream& m_out;
    stringTable_t m_names;
    numberIndex_t m_index;
    std::deque<chain_t> m_chains;
    uint32_t m_program = 0;
};

} // namespace vltrace
