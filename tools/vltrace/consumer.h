#pragma once

#include "formats/trace/levels.h"
#include "formats/trace/tracewalker.h"
#include "shared/statusnames.h"
#include "source.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vltrace {

// message_t is the text of a record taken apart: views of the record.
struct message_t {
    std::optional<int32_t> status; // of an E, as far as its text begins with one
    std::string_view colour;       // two hexadecimal digits of a colour directive, or empty
    std::string_view text;         // what is left
};
message_t messageOf(const tracecore::traceRecord_t& record);

// kind_t is what a record is to a reader: a status of 0 is a note, any other an error.
enum class kind_t { call, message, note, error, stamp };
kind_t kindOf(char level, const message_t& message);
const char* kindName(kind_t kind);

// traceEvent_t is one record in its place. All of it is a loan for the time of the call.
struct traceEvent_t {
    const source_t& source;
    const tracecore::traceRecord_t& record;
    const tracecore::traceStep_t& step;
    message_t message;
    kind_t kind;
    bool wanted; // by the filter
};

// traceConsumer_i gets what the files hold. Where the records of several files come in the order of
// time, all of them begin before the first record.
class traceConsumer_i
{
public:
    virtual ~traceConsumer_i() = default;

    virtual void begin(const source_t&) {}
    virtual void takeHeader(const source_t&, const tracecore::traceHeader_t&) {}
    virtual void takeDamage(const source_t&, const tracecore::traceDamage_t&,
                            const tracecore::traceStep_t&)
    {}
    virtual void takeRecord(const traceEvent_t& event) = 0;

    // end is called after each file, finish after the last one.
    virtual void end(const source_t&) {}
    virtual void finish() {}
};

// The parts of a time as they are shown; what isn't known is shown by marks of the same width.
std::string dateText(const tracecore::traceMoment_t& moment);
std::string timeText(const tracecore::traceMoment_t& moment);

// momentTexts_t makes these texts again only when the time has changed.
class momentTexts_t
{
public:
    const std::string& date(const tracecore::traceMoment_t& moment);
    const std::string& time(const tracecore::traceMoment_t& moment);

private:
    std::optional<int32_t> m_day, m_ms;
    std::string m_date, m_time;
};

std::string threadText(uint32_t thread); // as in 0x01A4

// statusOf describes a status other than 0; the same ones come again and again, so it remembers.
const tools::statusInfo_t& statusOf(int32_t status);

// durationOf gives the milliseconds between two moments; none if the time of one isn't known. A
// clock that was set back gives 0.
std::optional<int64_t> durationOf(const tracecore::traceMoment_t& from,
                                  const tracecore::traceMoment_t& to);

} // namespace vltrace
