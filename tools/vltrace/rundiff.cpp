#include "rundiff.h"

#include "lines.h"
#include "sequencediff.h"

#include <algorithm>
#include <array>
#include <cstdio>

using namespace tracecore;

namespace vltrace {

namespace {

bool isWord(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// Shapes, longest first: 0 is a decimal digit, h a hexadecimal one.
constexpr std::pair<std::string_view, std::string_view> shapes[] = {
    {"hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh", "<guid>"},
    {"00:00:00.000", "<time>"},
    {"00.00.00.000", "<time>"},
    {"00:00:00", "<time>"},
    {"00/00/0000", "<date>"},
    {"00-00-0000", "<date>"},
    {"0000-00-00", "<date>"},
    {"00/00/00", "<date>"},
    {"00.00.00", "<date>"},
};

bool beginsWith(std::string_view text, std::string_view shape)
{
    if (text.size() < shape.size() || (text.size() > shape.size() && isWord(text[shape.size()])))
        return false;
    return std::ranges::equal(text.substr(0, shape.size()), shape, [](char c, char wanted) {
        return wanted == '0' ? c >= '0' && c <= '9' : wanted == 'h' ? isHex(c) : c == wanted;
    });
}

// A small id would be found in every count.
std::array<std::string, 3> formsOf(uint32_t id)
{
    if (id < 100)
        return {};
    std::array<char, 16> hex{};
    std::snprintf(hex.data(), hex.size(), "%04X", id);
    return {std::to_string(id), hex.data(), std::string("0x") + hex.data()};
}

// markFor gives the mark for what a word begins, and its length; an empty one if it stays.
std::pair<std::string_view, size_t> markFor(std::string_view text,
                                            const std::array<std::string, 3>& process,
                                            const std::array<std::string, 3>& thread)
{
    for (const auto& [shape, mark] : shapes)
        if (beginsWith(text, shape))
            return {mark, shape.size()};
    const size_t size = static_cast<size_t>(std::ranges::find_if_not(text, isWord) - text.begin());
    const std::string_view word = text.substr(0, size); // never empty
    if (std::ranges::find(process, word) != process.end())
        return {"<process>", size};
    if (std::ranges::find(thread, word) != thread.end())
        return {"<thread>", size};
    constexpr size_t shortestAddress = 2 + 5; // statuses and flags are looked at
    const bool address = word.starts_with("0x") && size >= shortestAddress && size != 10;
    return {address ? "<address>" : "", size};
}

} // namespace

std::string normalised(std::string_view text, std::optional<uint32_t> process, uint32_t thread)
{
    const auto processForms = process ? formsOf(*process) : std::array<std::string, 3>();
    const auto threadForms = formsOf(thread);
    std::string result;
    while (!text.empty()) {
        size_t size = 1;
        if (isWord(text[0])) {
            const auto [mark, length] = markFor(text, processForms, threadForms);
            size = length;
            result += mark.empty() ? text.substr(0, size) : mark;
        } else {
            result += text[0];
        }
        text.remove_prefix(size);
    }
    return result;
}

uint32_t lineTable_t::numberOf(const std::string& line)
{
    const auto found = m_numbers.find(line);
    if (found != m_numbers.end())
        return found->second;
    const auto number = static_cast<uint32_t>(m_lines.size());
    m_numbers.emplace(m_lines.emplace_back(line), number);
    return number;
}

void run_t::begin(const source_t& source)
{
    m_places[source.number] = m_processes.size();
    m_processes.emplace_back();
}

void run_t::takeRecord(const traceEvent_t& event)
{
    const traceRecord_t& record = event.record;
    if (!event.wanted || event.kind == kind_t::stamp)
        return;
    process_t& process = m_processes[m_places[event.source.number]];
    const auto [place, isNew] = process.threads.try_emplace(record.thread, process.list.size());
    if (isNew)
        process.list.emplace_back();
    runThread_t& thread = process.list[place->second];

    std::string line{record.level, ' '};
    const auto neutral = [&](std::string_view text) {
        return normalised(text, event.source.process, record.thread);
    };
    const std::string text = neutral(record.level == levelExit && event.step.left
                                         ? std::string_view(event.step.left->name)
                                         : event.message.text);
    message_t message = event.message;
    message.text = text;
    appendMessage(line, message, true);
    const size_t depth = event.step.open.size() - (record.level == levelEntry ? 1 : 0);
    thread.lines.push_back(m_table.numberOf(line));
    thread.depths.push_back(static_cast<uint8_t>(std::min(depth, deepestIndent)));
}

bool compareRuns(const run_t& one, const run_t& other, const lineTable_t& table,
                 const std::function<void(const std::string&)>& put)
{
    bool equal = true;
    const runThread_t none;
    const auto threadsOf = [](const run_t& run, size_t process) {
        return process < run.processes().size() ? run.processes()[process].list.size() : 0;
    };
    const auto threadOf = [&](const run_t& run, size_t process, size_t thread) -> const auto&
    {
        return thread < threadsOf(run, process) ? run.processes()[process].list[thread] : none;
    };
    const size_t processes = std::max(one.processes().size(), other.processes().size());
    for (size_t process = 0; process < processes; ++process) {
        const size_t threads = std::max(threadsOf(one, process), threadsOf(other, process));
        for (size_t thread = 0; thread < threads; ++thread) {
            const runThread_t& a = threadOf(one, process, thread);
            const runThread_t& b = threadOf(other, process, thread);
            const auto show = [&](char sign, const runThread_t& from, size_t at) {
                put(sign + std::string(1 + size_t{2} * from.depths[at], ' ') +
                    table.line(from.lines[at]));
            };
            for (const hunk_t& hunk : hunksOf(compareSequences(a.lines, b.lines), a.lines.size())) {
                equal = false;
                put("@@ process " + std::to_string(process + 1) + ", thread " +
                    std::to_string(thread + 1) + ": record " + std::to_string(hunk.one + 1) +
                    " and " + std::to_string(hunk.other + 1) + " @@");
                size_t i = hunk.one;
                size_t j = hunk.other;
                for (const edit_t& edit : hunk.edits) {
                    for (; i < edit.one; ++i, ++j)
                        show(' ', a, i);
                    for (; i < edit.one + edit.removed; ++i)
                        show('-', a, i);
                    for (; j < edit.other + edit.added; ++j)
                        show('+', b, j);
                }
                for (; i < hunk.oneEnd; ++i)
                    show(' ', a, i);
            }
        }
    }
    return equal;
}

} // namespace vltrace
