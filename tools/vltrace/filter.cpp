#include "filter.h"

#include <algorithm>
#include <charconv>

using namespace tracecore;

namespace vltrace {

namespace {

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool contains(std::string_view text, const std::string& part)
{
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](char a, char b) { return lowered(a) == lowered(b); }) != text.end();
}

bool containsAny(std::string_view text, const std::vector<std::string>& parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [&](const std::string& part) { return contains(text, part); });
}

// isBefore compares what both have: for an instant on any day, only the time of day.
bool isBefore(const traceMoment_t& moment, const instant_t& instant)
{
    if (instant.day && moment.day != instant.day)
        return moment.day < instant.day;
    return moment.msOfDay < instant.msOfDay;
}

bool isAfter(const traceMoment_t& moment, const instant_t& instant)
{
    if (instant.day && moment.day != instant.day)
        return moment.day > instant.day;
    return moment.msOfDay > instant.msOfDay;
}

// take reads a number of that many digits from the front of text; -1 if there is none.
int take(std::string_view& text, size_t digits)
{
    int value = 0;
    if (text.size() < digits)
        return -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + digits, value);
    if (error != std::errc() || end != text.data() + digits)
        return -1;
    text.remove_prefix(digits);
    return value;
}

bool takeSign(std::string_view& text, char sign)
{
    if (text.empty() || text[0] != sign)
        return false;
    text.remove_prefix(1);
    return true;
}

std::optional<int32_t> takeDay(std::string_view& text)
{
    const int year = take(text, 4);
    const int month = takeSign(text, '-') ? take(text, 2) : -1;
    const int day = takeSign(text, '-') ? take(text, 2) : -1;
    return year < 0 || month < 0 || day < 0 ? std::nullopt : dayOf(year, month, day);
}

std::optional<int32_t> takeTime(std::string_view& text, bool latest)
{
    const int hour = take(text, 2);
    const int minute = takeSign(text, ':') ? take(text, 2) : -1;
    int second = latest ? 59 : 0;
    int ms = latest ? 999 : 0;
    if (takeSign(text, ':')) {
        second = take(text, 2);
        if (takeSign(text, '.'))
            ms = take(text, 3);
    }
    const auto isWithin = [](int value, int limit) { return value >= 0 && value < limit; };
    if (!isWithin(hour, 24) || !isWithin(minute, 60) || !isWithin(second, 60) || ms < 0)
        return std::nullopt;
    return ((hour * 60 + minute) * 60 + second) * 1000 + ms;
}

} // namespace

bool filter_t::wants(const traceEvent_t& event) const
{
    const auto allows = [](const auto& list, const auto& value) {
        return list.empty() || std::find(list.begin(), list.end(), value) != list.end();
    };
    const char level = event.record.level;
    if (levels.empty() ? event.kind == kind_t::stamp && level != levelWriter
                       : levels.find(level) == std::string::npos)
        return false;
    if (!allows(threads, event.record.thread) || !allows(kinds, event.kind) ||
        !wantsTime(event.step.moment) || !wantsText(event))
        return false;
    if (!processes.empty() && (!event.source.process || !allows(processes, *event.source.process)))
        return false;
    const traceStep_t& step = event.step;
    if (functions.empty() || (step.left && containsAny(step.left->name, functions)))
        return true;
    return std::ranges::any_of(innermost(step.open), [&](const openFunction_t& function) {
        return containsAny(function.name, functions);
    });
}

bool filter_t::wantsTime(const traceMoment_t& moment) const
{
    if (!from && !to)
        return true;
    return moment.msOfDay && (!from || !isBefore(moment, *from)) && (!to || !isAfter(moment, *to));
}

bool filter_t::wantsText(const traceEvent_t& event) const
{
    if (texts.empty() && patterns.empty())
        return true;
    std::string_view whole = event.record.text;
    std::string_view message = event.message.text;
    if (event.record.level == levelExit)
        whole = message = event.step.left ? std::string_view(event.step.left->name) : "";
    const auto matches = [&](const pattern_t& pattern) { return pattern.matches(message); };
    return (texts.empty() || containsAny(whole, texts)) &&
           (patterns.empty() || std::ranges::any_of(patterns, matches));
}

std::optional<instant_t> parseInstant(const std::string& text, bool latest)
{
    std::string_view rest = text;
    instant_t instant;
    instant.msOfDay = latest ? 86'400'000 - 1 : 0;
    if (rest.size() > 4 && rest[4] == '-') {
        instant.day = takeDay(rest);
        if (!instant.day)
            return std::nullopt;
        if (rest.empty())
            return instant;
        if (!takeSign(rest, ' ') && !takeSign(rest, 'T'))
            return std::nullopt;
    }
    const auto time = takeTime(rest, latest);
    if (!time || !rest.empty())
        return std::nullopt;
    instant.msOfDay = *time;
    return instant;
}

std::optional<uint32_t> parseId(const std::string& text)
{
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string digits = hex ? text.substr(2) : text;
    uint32_t id = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), id, hex ? 16 : 10);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return id;
}

std::span<const openFunction_t> innermost(std::span<const openFunction_t> open)
{
    constexpr size_t limit = 100;
    return open.last(std::min(open.size(), limit));
}

} // namespace vltrace
