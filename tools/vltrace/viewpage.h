#pragma once

#include "calls.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vltrace {

// viewPage_t writes a page that shows the records in a browser: one file with all that it needs.
// The records are in it as JSON, in columns; no text of theirs can become markup or script. It
// holds them in memory, as the browser will.
class viewPage_t : public callConsumer_t
{
public:
    explicit viewPage_t(std::ostream& out) : m_out(out) {}

    void begin(const source_t& source) override;
    void finish() override;

    size_t events() const noexcept { return m_calls.size() + m_marks.size(); }

private:
    struct call_t {
        uint32_t lane;
        uint32_t name;
        int64_t from;
        int64_t to;
        size_t parent; // number of the call that it is in, from 1; 0: none
        bool finished;
    };
    struct mark_t {
        uint32_t lane;
        char kind; // a level letter, n for a note, x for damage
        uint32_t text;
        uint32_t status; // number in the list, from 1; 0: none
        int64_t at;
        size_t call; // as parent
    };
    using openCall_t = callConsumer_t::call_t;
    void enter(thread_t& thread, openCall_t& call) override;
    void leave(thread_t& thread, openCall_t& call, int64_t to, bool finished) override;
    void mark(thread_t& thread, const traceEvent_t& event, int64_t at) override;
    void damage(const tracecore::traceDamage_t& item, int64_t at) override;

    uint32_t laneOf(int64_t thread);
    uint32_t stringOf(std::string_view text);
    uint32_t statusNumber(const message_t& message);
    void writeData();
    void writeFiles(std::string& text) const;
    void writeCalls(std::string& text, int64_t base) const;
    void writeMarks(std::string& text, int64_t base) const;

    std::ostream& m_out;
    std::vector<source_t> m_files;
    std::vector<std::pair<size_t, int64_t>> m_lanes; // file and thread, -1 for the file as such
    std::map<std::pair<size_t, int64_t>, uint32_t> m_laneNumbers;
    std::unordered_map<std::string, uint32_t> m_stringNumbers;
    std::vector<const std::string*> m_strings;
    std::map<int32_t, uint32_t> m_statusNumbers;
    std::vector<int32_t> m_statuses;
    std::vector<call_t> m_calls;
    std::vector<mark_t> m_marks;
};

} // namespace vltrace
