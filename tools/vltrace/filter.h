#pragma once

#include "consumer.h"
#include "pattern.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vltrace {

// instant_t is an end of a range of time: on a day, or on any day.
struct instant_t {
    std::optional<int32_t> day; // days since 1970-01-01
    int32_t msOfDay = 0;
};

// filter_t says which records are wanted: those that meet each part which is set. Parts of
// texts are compared without regard to the case of ASCII letters.
struct filter_t {
    std::vector<uint32_t> processes;
    std::vector<uint32_t> threads;
    std::string levels;                 // level bytes; empty: all but the stamps of time and date
    std::vector<kind_t> kinds;          // empty: all
    std::vector<std::string> functions; // part of the name of one that is open, or is being left
    std::vector<std::string> texts;     // part of the record's text; of a <: of the function's name
    std::vector<pattern_t> patterns;    // match in that text without a status or colour in front
    std::optional<instant_t> from;      // inclusive, both
    std::optional<instant_t> to;

    // Errors: CToolError if a pattern is too expensive for the text
    bool wants(const traceEvent_t& event) const;

private:
    bool wantsText(const traceEvent_t& event) const;
    bool wantsTime(const tracecore::traceMoment_t& moment) const;
};

// parseInstant reads YYYY-MM-DD, HH:MM[:SS[.mmm]] or both with a blank or a T between. What is left
// out is the beginning, or with latest the end of that day, minute or second.
//
// Returns: none for any other text
std::optional<instant_t> parseInstant(const std::string& text, bool latest);

// parseId reads the id of a thread or process in decimal, or in hexadecimal after 0x.
std::optional<uint32_t> parseId(const std::string& text);

// innermost gives the last functions of a chain, at most as many as are worth showing and
// searching: a damaged or endless recursion may hold millions.
std::span<const tracecore::openFunction_t>
innermost(std::span<const tracecore::openFunction_t> open);

} // namespace vltrace
