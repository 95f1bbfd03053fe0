#include "consumer.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

using namespace tracecore;

namespace vltrace {

namespace {

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

std::string padded(int value, size_t width)
{
    const std::string digits = std::to_string(value);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

} // namespace

message_t messageOf(const traceRecord_t& record)
{
    message_t message;
    message.text = record.text;
    if (isOfUse(record.level, levelUse_t::status)) {
        int64_t number = 0;
        const char* begin = record.text.data();
        const char* const last = begin + record.text.size();
        const auto [end, error] = std::from_chars(begin, last, number);
        if (error == std::errc() && end != last && *end == ' ') {
            message.status = static_cast<int32_t>(static_cast<uint32_t>(number));
            message.text.assign(end + 1, last);
        }
    }
    const std::string& text = message.text;
    if (text.size() >= 7 && text.starts_with("'`I") && isHexDigit(text[3]) && isHexDigit(text[4]) &&
        text[5] == '`' && text[6] == '\'') {
        message.colour = text.substr(3, 2);
        message.text.erase(0, 7);
    }
    return message;
}

kind_t kindOf(const traceRecord_t& record)
{
    const levelInfo_t* const level = levelOf(record.level);
    switch (level ? level->use : levelUse_t::clock) {
    case levelUse_t::status:
        return messageOf(record).status == 0 ? kind_t::note : kind_t::error;
    case levelUse_t::message:
        return kind_t::message;
    case levelUse_t::call:
        return kind_t::call;
    default:
        return kind_t::stamp;
    }
}

std::string dateText(const traceMoment_t& moment)
{
    if (!moment.day)
        return "----------";
    const calendarDay_t date = calendarOf(*moment.day);
    return padded(date.year, 4) + "-" + padded(date.month, 2) + "-" + padded(date.day, 2);
}

std::string timeText(const traceMoment_t& moment)
{
    if (!moment.msOfDay)
        return "--:--:--.---";
    const int ms = *moment.msOfDay;
    return padded(ms / 3'600'000, 2) + ":" + padded(ms / 60'000 % 60, 2) + ":" +
           padded(ms / 1000 % 60, 2) + "." + padded(ms % 1000, 3);
}

std::string threadText(uint32_t thread)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%04X", thread);
    return text;
}

std::optional<int64_t> durationOf(const traceMoment_t& from, const traceMoment_t& to)
{
    if (!from.msOfDay || !to.msOfDay || from.day.has_value() != to.day.has_value())
        return std::nullopt;
    return std::max<int64_t>(0, to.milliseconds() - from.milliseconds());
}

} // namespace vltrace
