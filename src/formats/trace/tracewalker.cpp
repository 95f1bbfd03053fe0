#include "formats/trace/tracewalker.h"

#include "formats/trace/levels.h"

#include <chrono>

namespace tracecore {

namespace {

int number(const std::string& text, size_t at, size_t digits)
{
    int value = 0;
    for (size_t i = at; i < at + digits && i < text.size(); ++i)
        value = value * 10 + (text[i] - '0');
    return value;
}

std::optional<int32_t> timeOf(const std::string& text)
{
    const int hour = number(text, 0, 2);
    const int minute = number(text, 3, 2);
    const int second = number(text, 6, 2);
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return ((hour * 60 + minute) * 60 + second) * 1000 + number(text, 9, 3);
}

} // namespace

int64_t traceMoment_t::milliseconds() const noexcept
{
    return int64_t{day.value_or(0)} * 86'400'000 + msOfDay.value_or(0);
}

std::optional<int32_t> dayOf(int year, int month, int day) noexcept
{
    const std::chrono::year_month_day date{std::chrono::year{year},
                                           std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok())
        return std::nullopt;
    return static_cast<int32_t>(std::chrono::sys_days{date}.time_since_epoch().count());
}

calendarDay_t calendarOf(int32_t day) noexcept
{
    const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

// The header's date holds until the first stamp; its time is that of no record.
void traceWalker_t::takeHeader(const traceHeader_t& header)
{
    for (const std::string& line : header.lines) {
        if (!hasShape(line, "00/00/0000 00:00:00.000"))
            continue;
        m_year = number(line, 6, 4);
        m_now.day = dayOf(m_year, number(line, 0, 2), number(line, 3, 2));
    }
}

void traceWalker_t::takeStamp(const traceRecord_t& record)
{
    const std::string& text = record.text;
    const levelInfo_t* const level = levelOf(record.level);
    const bool shaped = level && level->shape && hasShape(text, *level->shape);
    if (record.level == levelTime) {
        m_now.msOfDay = shaped ? timeOf(text) : std::nullopt;
    } else if (record.level == levelDate && shaped) {
        // The year nearest to the last one known: a file may run over the turn of a century.
        int year = m_year - m_year % 100 + number(text, 6, 2);
        year += year < m_year - 50 ? 100 : year > m_year + 50 ? -100 : 0;
        m_now.day = dayOf(year, number(text, 0, 2), number(text, 3, 2));
    } else if (record.level == levelWriter && shaped) {
        m_year = number(text, 6, 4);
        m_now.day = dayOf(m_year, number(text, 0, 2), number(text, 3, 2));
    }
}

void traceWalker_t::forget(uint32_t thread, stack_t& stack)
{
    for (; stack.depth > 0; --stack.depth)
        m_lost.push_back({thread, std::move(stack.functions[stack.depth - 1])});
}

traceWalker_t::stack_t& traceWalker_t::stackOf(uint32_t thread)
{
    const auto place = m_open.find(thread);
    if (place != m_open.end())
        return place->second;
    if (!m_spare)
        return m_open[thread];
    m_spare.key() = thread;
    return m_open.insert(std::move(m_spare)).position->second;
}

void traceWalker_t::push(const traceRecord_t& record, stack_t& stack)
{
    if (stack.depth == stack.functions.size())
        stack.functions.emplace_back();
    openFunction_t& function = stack.functions[stack.depth++];
    function.name = record.text;
    function.entered = m_now;
}

// Only threads with an open function are held: a damaged file may name millions.
void traceWalker_t::takeCall(const traceRecord_t& record, traceStep_t& step)
{
    if (record.level == levelEntry) {
        stack_t& stack = stackOf(record.thread);
        push(record, stack);
        step.open = std::span(stack.functions).first(stack.depth);
        return;
    }
    const auto place = m_open.find(record.thread);
    if (place == m_open.end())
        return;
    stack_t& stack = place->second;
    if (record.level == levelWriter)
        forget(record.thread, stack);
    else if (record.level == levelExit)
        step.left = &stack.functions[--stack.depth];
    step.open = std::span(stack.functions).first(stack.depth);
    if (stack.depth == 0)
        m_spare = m_open.extract(place);
}

traceStep_t traceWalker_t::take(const traceItem_t& item)
{
    traceStep_t step;
    m_lost.clear();
    if (const auto* header = std::get_if<traceHeader_t>(&item)) {
        takeHeader(*header);
    } else if (const auto* damage = std::get_if<traceDamage_t>(&item); damage && damage->bytes) {
        for (auto& [thread, stack] : m_open)
            forget(thread, stack);
        m_open.clear();
    } else if (const auto* record = std::get_if<traceRecord_t>(&item)) {
        takeStamp(*record);
        takeCall(*record, step);
    }
    step.moment = m_now;
    step.lost = m_lost;
    return step;
}

} // namespace tracecore
