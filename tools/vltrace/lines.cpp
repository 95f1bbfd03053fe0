#include "lines.h"

#include "filter.h"
#include "formats/text/printable.h"
#include "shared/terminal.h"
#include "textout.h"

#include <algorithm>
#include <utility>

using namespace tracecore;

namespace vltrace {

std::string skippedText(uint64_t bytes)
{
    return std::to_string(bytes) + (bytes == 1 ? " byte skipped" : " bytes skipped");
}

std::string damageText(const traceDamage_t& damage)
{
    const std::string place = " at offset " + std::to_string(damage.offset) + ": " + damage.reason;
    if (damage.bytes == 0)
        return "damage" + place;
    return skippedText(damage.bytes) + place;
}

linePrinter_t::linePrinter_t(lineOptions_t options, std::function<void(std::string&)> put)
    : m_options(options), m_put(std::move(put))
{}

void linePrinter_t::begin(const source_t& source)
{
    m_headers[source.number] = {"\n# " + (source.label.empty() ? "" : source.label + ": ") +
                                printable(source.shown) + '\n'};
    if (!m_options.chains)
        showHeader(source);
}

void linePrinter_t::takeHeader(const source_t& source, const traceHeader_t& header)
{
    std::vector<std::string>& lines = m_headers[source.number];
    for (const std::string& line : header.lines)
        lines.push_back("# " + printable(line) + '\n');
    if (!m_options.chains)
        showHeader(source);
}

void linePrinter_t::showHeader(const source_t& source)
{
    for (std::string& line : std::exchange(m_headers[source.number], {})) {
        if (line[0] == '\n' && m_files++ == 0)
            line.erase(0, 1); // no line between files before the first one
        m_put(line);
    }
}

void linePrinter_t::takeDamage(const source_t& source, const traceDamage_t& damage,
                               const traceStep_t&)
{
    showHeader(source);
    m_line =
        "-- " + (source.label.empty() ? "" : source.label + ": ") + damageText(damage) + " --\n";
    m_put(m_line);
}

void appendMessage(std::string& line, const message_t& message, bool marks)
{
    if (marks && !message.colour.empty())
        ((line += "[colour ") += message.colour) += "] ";
    if (message.status && *message.status != 0) {
        const tools::statusInfo_t& info = statusOf(*message.status);
        line += info.hex;
        if (!info.name.empty())
            (line += ' ') += info.name;
        if (!info.text.empty())
            ((line += " (") += info.text) += ')';
        if (!message.text.empty())
            line += ": ";
    }
    appendPrintable(line, message.text);
}

void linePrinter_t::appendChain(const traceStep_t& step)
{
    const auto open = innermost(step.open);
    if (open.size() < step.open.size())
        m_line += "    in " + std::to_string(step.open.size() - open.size()) + " more functions\n";
    for (const openFunction_t& function : open) {
        m_line += "    in ";
        appendPrintable(m_line, function.name);
        ((m_line += ", entered ") += timeText(function.entered)) += '\n';
    }
}

void linePrinter_t::takeRecord(const traceEvent_t& event)
{
    if (!event.wanted)
        return;
    if (m_options.chains)
        showHeader(event.source);
    const traceRecord_t& record = event.record;
    const traceStep_t& step = event.step;
    const size_t depth =
        m_options.chains ? 0 : step.open.size() - (record.level == levelEntry ? 1 : 0);
    m_line = m_texts.date(step.moment);
    ((m_line += ' ') += m_texts.time(step.moment)) += "  ";
    if (!event.source.label.empty())
        (m_line += event.source.label) += "  ";
    m_line += threadText(record.thread);
    m_line.append(2 + 2 * std::min(depth, deepestIndent), ' ');
    const size_t begin = m_line.size();
    (m_line += record.level) += ' ';
    if (record.level != levelExit) {
        appendMessage(m_line, event.message, m_options.marks);
    } else if (step.left) {
        appendPrintable(m_line, step.left->name);
        if (const auto duration = durationOf(step.left->entered, step.moment)) {
            m_line += "  ";
            appendNumber(m_line, *duration);
            m_line += " ms";
        }
    } else {
        m_line += "(a function whose entry is not known)";
    }
    if (m_options.terminal && (event.kind == kind_t::error || event.kind == kind_t::note))
        m_line.replace(begin, std::string::npos,
                       coloured(*m_options.terminal,
                                event.kind == kind_t::error ? colour_t::red : colour_t::yellow,
                                m_line.substr(begin)));
    if (record.mended)
        m_line += "  -- the text is damaged --";
    m_line += '\n';
    if (m_options.chains)
        appendChain(step);
    m_put(m_line);
}

} // namespace vltrace
