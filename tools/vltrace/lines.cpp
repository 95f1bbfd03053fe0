#include "lines.h"

#include "formats/text/printable.h"
#include "shared/statusnames.h"

#include <algorithm>
#include <utility>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t deepestIndent = 40; // deeper calls stay in one column

std::string statusText(const message_t& message)
{
    if (!message.status || *message.status == 0)
        return {};
    const tools::statusInfo_t info = tools::describeStatus(*message.status);
    std::string text = info.hex;
    if (!info.name.empty())
        text += " " + info.name;
    if (!info.text.empty())
        text += " (" + info.text + ")";
    return message.text.empty() ? text : text + ": ";
}

} // namespace

std::string damageText(const traceDamage_t& damage)
{
    const std::string place = " at offset " + std::to_string(damage.offset) + ": " + damage.reason;
    if (damage.bytes == 0)
        return "damage" + place;
    return std::to_string(damage.bytes) + (damage.bytes == 1 ? " byte" : " bytes") + " skipped" +
           place;
}

linePrinter_t::linePrinter_t(filter_t filter, lineOptions_t options,
                             std::function<void(const std::string&)> put)
    : m_filter(std::move(filter)), m_options(options), m_put(std::move(put))
{}

void linePrinter_t::begin(const std::string& name)
{
    if (m_files++ > 0)
        m_put("\n");
    m_put("# " + printable(name) + "\n");
}

void linePrinter_t::take(const traceItem_t& item, const traceStep_t& step)
{
    if (const auto* header = std::get_if<traceHeader_t>(&item)) {
        for (const std::string& line : header->lines)
            m_put("# " + printable(line) + "\n");
    } else if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
        m_put("-- " + damageText(*damage) + " --\n");
    } else if (const auto* record = std::get_if<traceRecord_t>(&item)) {
        if (m_filter.wants(*record, step))
            m_put(recordLine(*record, step));
    }
}

std::string linePrinter_t::recordLine(const traceRecord_t& record, const traceStep_t& step) const
{
    const bool entry = record.level == levelEntry;
    const size_t depth = m_options.chains ? 0 : step.open->size() - (entry ? 1 : 0);
    std::string line = dateText(step.moment) + " " + timeText(step.moment) + "  " +
                       threadText(record.thread) + "  " +
                       std::string(2 * std::min(depth, deepestIndent), ' ') + record.level + " ";
    if (record.level == levelExit) {
        line += step.left ? printable(step.left->name) : "(a function whose entry is not known)";
        if (step.left)
            if (const auto duration = durationOf(step.left->entered, step.moment))
                line += "  " + std::to_string(*duration) + " ms";
    } else {
        const message_t message = messageOf(record);
        if (m_options.marks && !message.colour.empty())
            line += "[colour " + message.colour + "] ";
        line += statusText(message) + printable(message.text);
    }
    if (record.mended)
        line += "  -- the text is damaged --";
    line += "\n";
    if (!m_options.chains)
        return line;

    const auto open = innermost(*step.open);
    if (open.size() < step.open->size())
        line += "    in " + std::to_string(step.open->size() - open.size()) + " more functions\n";
    for (const openFunction_t& function : open)
        line +=
            "    in " + printable(function.name) + ", entered " + timeText(function.entered) + "\n";
    return line;
}

} // namespace vltrace
