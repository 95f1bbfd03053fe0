#include "lines.h"

#include "common/statusnames.h"

#include <cstdio>
#include <utility>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t deepestIndent = 40; // deeper calls stay in one column

std::string escaped(unsigned char byte)
{
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02X", byte);
    return text;
}

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

std::string printable(const std::string& text)
{
    std::string shown;
    shown.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // U+0080 to U+009F are controls as well: C2 and one byte below A0.
        const bool high =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (byte == '\n')
            shown += "\\n";
        else if (byte == '\r')
            shown += "\\r";
        else if (high)
            shown += escaped(static_cast<unsigned char>(text[++i]));
        else if ((byte < 0x20 && byte != '\t') || byte == 0x7F)
            shown += escaped(byte);
        else
            shown += text[i];
    }
    return shown;
}

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
        if ((!m_options.errorsOnly || record->level == 'E') && m_filter.wants(*record, step))
            m_put(recordLine(*record, step));
    }
}

std::string linePrinter_t::recordLine(const traceRecord_t& record, const traceStep_t& step) const
{
    const bool entry = record.level == '>';
    const size_t depth = m_options.errorsOnly ? 0 : step.open->size() - (entry ? 1 : 0);
    std::string line = dateText(step.moment) + " " + timeText(step.moment) + "  " +
                       threadText(record.thread) + "  " +
                       std::string(2 * std::min(depth, deepestIndent), ' ') + record.level + " ";
    if (record.level == '<') {
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
    if (!m_options.errorsOnly)
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
