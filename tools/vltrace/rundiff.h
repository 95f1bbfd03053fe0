#pragma once

#include "consumer.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace vltrace {

// lineTable_t holds each line once: two runs are mostly the same lines.
class lineTable_t
{
public:
    uint32_t numberOf(const std::string& line);
    const std::string& line(uint32_t number) const { return m_lines[number]; }

private:
    std::unordered_map<std::string_view, uint32_t> m_numbers;
    std::deque<std::string> m_lines; // which stay where they are
};

// runThread_t is what a thread did, as numbers of lines.
struct runThread_t {
    std::vector<uint32_t> lines;
    std::vector<uint8_t> depths; // of nesting, for what is shown
};

// run_t collects what a run did, by its processes in the order of their files and their threads in
// the order of their first records. Times and the ids of process and thread are left out, so that
// the same work gives the same lines.
class run_t : public traceConsumer_i
{
public:
    explicit run_t(lineTable_t& table) : m_table(table) {}

    void begin(const source_t& source) override;
    void takeRecord(const traceEvent_t& event) override;

    struct process_t {
        std::map<uint32_t, size_t> threads; // by id: the place in the list
        std::vector<runThread_t> list;
    };
    const std::vector<process_t>& processes() const noexcept { return m_processes; }

private:
    lineTable_t& m_table;
    std::map<size_t, size_t> m_places; // by the source's number
    std::vector<process_t> m_processes;
};

// normalised replaces times, dates, GUIDs, addresses and the two ids in a text by marks such as
// <time>.
std::string normalised(std::string_view text, std::optional<uint32_t> process, uint32_t thread);

// compareRuns writes the differences as hunks, the lines of one run with "-", those of the other
// with "+" in front.
//
// put:     gets a line without its end
// Returns: false if there are any
bool compareRuns(const run_t& one, const run_t& other, const lineTable_t& table,
                 const std::function<void(const std::string&)>& put);

} // namespace vltrace
