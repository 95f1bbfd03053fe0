#pragma once

#include "consumer.h"

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

// filter_t says which records are wanted: those that meet each part which is set. Texts are
// compared without regard to the case of ASCII letters.
struct filter_t {
    std::vector<uint32_t> threads;
    std::string levels;                 // level bytes; empty: all but the stamps of time and date
    std::vector<kind_t> kinds;          // empty: all
    std::vector<std::string> functions; // part of the name of one that is open, or is being left
    std::vector<std::string> texts;     // part of the record's text; of a <: of the function's name
    std::optional<instant_t> from;      // inclusive, both
    std::optional<instant_t> to;

    bool wants(const tracecore::traceRecord_t& record, const tracecore::traceStep_t& step) const;
};

// parseInstant reads YYYY-MM-DD, HH:MM[:SS[.mmm]] or both with a blank or a T between. What is left
// out is the beginning, or with latest the end of that day, minute or second.
//
// Returns: none for any other text
std::optional<instant_t> parseInstant(const std::string& text, bool latest);

// parseThread reads a thread id in decimal, or in hexadecimal after 0x.
std::optional<uint32_t> parseThread(const std::string& text);

// innermost gives the last functions of a chain, at most as many as are worth showing and
// searching: a damaged or endless recursion may hold millions.
std::span<const tracecore::openFunction_t>
innermost(const std::vector<tracecore::openFunction_t>& open);

} // namespace vltrace
