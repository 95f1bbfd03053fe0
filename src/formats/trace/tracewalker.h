#pragma once

#include "formats/trace/tracereader.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tracecore {

// traceMoment_t is a local time as far as it is known.
struct traceMoment_t {
    std::optional<int32_t> day;     // days since 1970-01-01
    std::optional<int32_t> msOfDay; // milliseconds since midnight
    // Since 1970-01-01 00:00 of the local clock; unknown parts count as 0.
    int64_t milliseconds() const noexcept;

    bool operator==(const traceMoment_t&) const = default;
};

// dayOf gives the days since 1970-01-01 of a date in the Gregorian calendar; none if there is no
// such date.
std::optional<int32_t> dayOf(int year, int month, int day) noexcept;

struct calendarDay_t {
    int year;
    int month;
    int day;
};
calendarDay_t calendarOf(int32_t day) noexcept;

// openFunction_t is a function that a thread has entered and not left.
struct openFunction_t {
    std::string name;
    traceMoment_t entered;
};

// lostFunction_t is an open function whose end will never be known.
struct lostFunction_t {
    uint32_t thread;
    openFunction_t function;
};

// traceStep_t is what the records up to and with one item mean together. All of it is the walker's
// own, valid until the next take.
struct traceStep_t {
    traceMoment_t moment; // of the item
    // The open functions of a record's thread, outermost first: with a > it is in there, with a <
    // it no longer is.
    std::span<const openFunction_t> open;
    const openFunction_t* left = nullptr; // of a <: the function, if its entry is known
    std::span<const lostFunction_t> lost; // innermost first for each thread
};

// traceWalker_t follows the items of one file: the stamps give each record its time, the entries
// and exits of each thread its open functions.
//
// Damage may hide entries and exits. So it makes all threads forget their open functions; those
// that a thread opens afterwards are right again, and an exit with no entry is passed over. A new
// writer (N) makes its thread forget, since the system reuses thread ids.
class traceWalker_t
{
public:
    traceStep_t take(const traceItem_t& item);

private:
    void takeHeader(const traceHeader_t& header);
    void takeStamp(const traceRecord_t& record);
    // stack_t keeps what was popped, so that the next push finds room for its name.
    struct stack_t {
        std::vector<openFunction_t> functions;
        size_t depth = 0;
    };
    using stacks_t = std::map<uint32_t, stack_t>;
    void takeCall(const traceRecord_t& record, traceStep_t& step);
    void push(const traceRecord_t& record, stack_t& stack);
    stack_t& stackOf(uint32_t thread);
    void forget(uint32_t thread, stack_t& stack);

    stacks_t m_open;
    stacks_t::node_type m_spare; // the stack that became empty last
    std::vector<lostFunction_t> m_lost;
    traceMoment_t m_now;
    int m_year = 2000; // the last full year seen: stamps have two digits
};

} // namespace tracecore
