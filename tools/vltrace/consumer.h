#pragma once

#include "formats/trace/levels.h"
#include "formats/trace/tracewalker.h"

#include <optional>
#include <string>

namespace vltrace {

// traceConsumer_i gets what the files hold, file by file.
class traceConsumer_i
{
public:
    virtual ~traceConsumer_i() = default;

    // name: the file's, UTF-8
    virtual void begin(const std::string& name) = 0;
    virtual void take(const tracecore::traceItem_t& item, const tracecore::traceStep_t& step) = 0;

    // end is called after each file, finish after the last one.
    virtual void end() {}
    virtual void finish() {}
};

// message_t is the text of a record taken apart.
struct message_t {
    std::optional<int32_t> status; // of an E, as far as its text begins with one
    std::string colour;            // two hexadecimal digits of a colour directive, or empty
    std::string text;              // what is left
};
message_t messageOf(const tracecore::traceRecord_t& record);

// kind_t is what a record is to a reader: a status of 0 is a note, any other an error.
enum class kind_t { call, message, note, error, stamp };
kind_t kindOf(const tracecore::traceRecord_t& record);

// The parts of a time as they are shown; what isn't known is shown by marks of the same width.
std::string dateText(const tracecore::traceMoment_t& moment);
std::string timeText(const tracecore::traceMoment_t& moment);

std::string threadText(uint32_t thread); // as in 0x01A4

// durationOf gives the milliseconds between two moments; none if the time of one isn't known. A
// clock that was set back gives 0.
std::optional<int64_t> durationOf(const tracecore::traceMoment_t& from,
                                  const tracecore::traceMoment_t& to);

} // namespace vltrace
