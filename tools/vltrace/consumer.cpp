#include "consumer.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <unordered_map>

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
    std::string_view& text = message.text;
    if (isOfUse(record.level, levelUse_t::status)) {
        int64_t number = 0;
        const char* const begin = text.data();
        const char* const last = begin + text.size();
        const auto [end, error] = std::from_chars(begin, last, number);
        if (error == std::errc() && end != last && *end == ' ') {
            message.status = static_cast<int32_t>(static_cast<uint32_t>(number));
            text.remove_prefix(static_cast<size_t>(end + 1 - begin));
        }
    }
    if (text.size() >= 7 && text.starts_with("'`I") && isHexDigit(text[3]) && isHexDigit(text[4]) &&
        text[5] == '`' && text[6] == '\'') {
        message.colour = text.substr(3, 2);
        text.remove_prefix(7);
    }
    return message;
}

kind_t kindOf(char letter, const message_t& message)
{
    const levelInfo_t* const level = levelOf(letter);
    switch (level ? level->use : levelUse_t::clock) {
    case levelUse_t::status:
        return message.status == 0 ? kind_t::note : kind_t::error;
    case levelUse_t::message:
        return kind_t::message;
    case levelUse_t::call:
        return kind_t::call;
    default:
        return kind_t::stamp;
    }
}

const char* kindName(kind_t kind)
{
    switch (kind) {
    case kind_t::error:
        return "error";
    case kind_t::note:
        return "note";
    case kind_t::message:
        return "message";
    case kind_t::call:
        return "call";
    default:
        return "stamp";
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

const std::string& momentTexts_t::date(const traceMoment_t& moment)
{
    if (m_date.empty() || m_day != moment.day) {
        m_day = moment.day;
        m_date = dateText(moment);
    }
    return m_date;
}

const std::string& momentTexts_t::time(const traceMoment_t& moment)
{
    if (m_time.empty() || m_ms != moment.msOfDay) {
        m_ms = moment.msOfDay;
        m_time = timeText(moment);
    }
    return m_time;
}

std::string threadText(uint32_t thread)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%04X", thread);
    return text;
}

const tools::statusInfo_t& statusOf(int32_t status)
{
    constexpr size_t limit = 1000; // a damaged file may name millions
    static std::unordered_map<int32_t, tools::statusInfo_t> known;
    if (known.size() >= limit)
        known.clear();
    const auto [place, isNew] = known.try_emplace(status);
    if (isNew)
        place->second = tools::describeStatus(status);
    return place->second;
}

std::optional<int64_t> durationOf(const traceMoment_t& from, const traceMoment_t& to)
{
    if (!from.msOfDay || !to.msOfDay || from.day.has_value() != to.day.has_value())
        return std::nullopt;
    return std::max<int64_t>(0, to.milliseconds() - from.milliseconds());
}

} // namespace vltrace
