#pragma once

#include "calls.h"
#include "stringtable.h"
#include "textout.h"

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace vltrace {

// viewPage_t writes a page that shows the records in a browser: one file with all that it needs.
// The records are in it as JSON, in columns; no text of theirs can become markup or script. It
// holds them in memory, as the browser will: 32 bytes for each call or mark, and each text once.
class viewPage_t : public callConsumer_t
{
public:
    explicit viewPage_t(std::ostream& out) : m_out(out) {}

    void begin(const source_t& source) override;
    void finish() override;

    size_t events() const noexcept { return m_calls.size() + m_marks.size(); }

private:
    struct call_t {
        int64_t from;
        int64_t to;
        uint32_t lane;
        uint32_t name;
        uint32_t parent; // number of the call that it is in, from 1; 0: none
        bool finished;
    };
    struct mark_t {
        int64_t at;
        uint32_t lane;
        uint32_t text;
        int32_t status; // 0: none
        uint32_t call;  // as parent
        char kind;      // a level letter, n for a note, x for damage
    };
    using openCall_t = callConsumer_t::call_t;
    void enter(thread_t& thread, openCall_t& call) override;
    void leave(thread_t& thread, openCall_t& call, int64_t to, bool finished) override;
    void mark(thread_t& thread, const traceEvent_t& event, int64_t at) override;
    void damage(const tracecore::traceDamage_t& item, int64_t at) override;

    uint32_t laneOf(int64_t thread);
    std::vector<int32_t> statuses() const;
    void writeData();
    void writeFiles(textOut_t& out) const;
    void writeCalls(textOut_t& out, int64_t base) const;
    void writeMarks(textOut_t& out, int64_t base, const std::vector<int32_t>& statuses) const;

    std::ostream& m_out;
    std::vector<source_t> m_files;
    std::vector<std::pair<size_t, int64_t>> m_lanes; // file and thread, -1 for the file as such
    std::map<std::pair<size_t, int64_t>, uint32_t> m_laneNumbers;
    stringTable_t m_strings;
    std::deque<call_t> m_calls;
    std::deque<mark_t> m_marks;
};

} // namespace vltrace
