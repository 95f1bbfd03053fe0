#include "formats/trace/tracereader.h"

#include "formats/trace/recordformat.h"

#include <algorithm>
#include <utility>

namespace tracecore {

namespace {

constexpr size_t headerLineLimit = 1024; // the tracer's own lines have at most 262 bytes
constexpr size_t headerLimit = 1 << 16;
constexpr size_t mendedLimit = 4096;  // longest text that is mended rather than searched through
constexpr size_t glance = 256;        // bytes of text that decide whether a search ends at a record
constexpr size_t keptBytes = 1 << 16; // used bytes are released in pieces of at least this size

} // namespace

void traceReader_t::append(std::span<const uint8_t> bytes)
{
    if (m_at >= keptBytes && m_at >= m_bytes.size() / 2) {
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(m_at));
        m_base += m_at;
        m_scan -= std::min(m_scan, m_at);
        m_at = 0;
    }
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

std::span<const uint8_t> traceReader_t::rest(size_t at) const noexcept
{
    return std::span(m_bytes).subspan(std::min(at, m_bytes.size()));
}

const traceItem_t* traceReader_t::next()
{
    for (;;) {
        switch (m_phase) {
        case phase_t::mark:
        case phase_t::header:
            return nextHeader();
        case phase_t::search:
            if (!search(m_bytes.size()))
                return nullptr;
            m_phase = phase_t::records;
            return takeDamage(m_scan, m_reason);
        case phase_t::records:
            if (const traceItem_t* const item = nextRecord())
                return item;
            if (m_phase == phase_t::records)
                return nullptr;
        }
    }
}

const traceItem_t* traceReader_t::nextHeader()
{
    for (;;) {
        const auto bytes = rest(m_at).first(std::min(rest(m_at).size(), headerLineLimit));
        const auto end = std::find_if(bytes.begin(), bytes.end(),
                                      [](uint8_t byte) { return byte < 0x20 && byte != '\t'; });
        const std::string line(bytes.begin(), end);
        const auto after = bytes.subspan(line.size());
        const bool ended = after.size() >= 2 && after[0] == '\r' && after[1] == '\n';
        if (!ended && !m_ended && bytes.size() < headerLineLimit &&
            (after.empty() || (after.size() == 1 && after[0] == '\r')))
            return nullptr; // the line continues in bytes that are still to come
        if (m_phase == phase_t::mark) {
            m_phase = phase_t::header;
            if (m_bytes.empty()) { // an empty file has nothing wrong with it
                m_phase = phase_t::records;
                return nullptr;
            }
            if (line != "trace3") {
                if (!ended)
                    return endHeader("there is no header");
                return give(
                    traceDamage_t{0, 0, "the header doesn't begin with its mark, \"trace3\""});
            }
        }
        if (!ended || m_headerSize > headerLimit)
            return endHeader("the header has no end");
        m_at += line.size() + 2;
        m_headerSize += line.size() + 2;
        if (line == ".")
            return endHeader({});
        m_header.lines.push_back(validUtf8(line));
    }
}

// The lines that there are come first, then what is missing from the header.
const traceItem_t* traceReader_t::endHeader(std::string missing)
{
    const bool hasLines = !m_header.lines.empty();
    if (!missing.empty() && hasLines) {
        m_headerSize = headerLimit + 1; // the next call ends up here again, with no lines left
        return give(std::exchange(m_header, {}));
    }
    m_phase = phase_t::records;
    if (missing.empty())
        return give(std::exchange(m_header, {}));
    return give(traceDamage_t{m_base + m_at, 0, std::move(missing)});
}

// At most textLimit bytes of text are looked at.
look_t traceReader_t::look(size_t at, size_t textLimit)
{
    return m_judge.look(rest(at), m_ended, textLimit);
}

const traceItem_t* traceReader_t::nextRecord()
{
    const auto bytes = rest(m_at);
    if (bytes.empty())
        return nullptr;
    m_scan = m_at + 1;
    const size_t length = bytes.size() < recordHeaderSize ? 0 : textLength(bytes);
    // Long texts that turn out wrong again and again use up the patience; then a glance has to do.
    const uint64_t patience = 4 * (m_base + m_at) + (1 << 20);
    const size_t limit = m_wasted + length <= patience ? std::max(length, glance) : glance;
    const look_t found = look(m_at, limit);
    if (found == look_t::weak || found == look_t::sure)
        return takeRecord(length <= limit);
    if (found == look_t::more)
        return nullptr;
    if (found == look_t::no) {
        m_wasted += limit == glance ? 0 : length;
        // With a record right after it, only the text is damaged. If there is one within it, the
        // length is damaged too, and happens to end where another record begins.
        const bool framed =
            bytes.size() >= recordHeaderSize && mayBeFramed(bytes) && length <= mendedLimit;
        const size_t end = m_at + recordHeaderSize + length;
        const look_t follows = framed ? look(end, glance) : look_t::no;
        if (framed && follows == look_t::more)
            return nullptr;
        if (follows == look_t::weak || follows == look_t::sure ||
            (framed && m_ended && end == m_bytes.size())) {
            if (!search(end))
                return nullptr;
            if (m_scan == end)
                return takeRecord(false);
        }
    }
    m_reason = found == look_t::cut ? "a record is cut short" : "no record can begin here";
    m_phase = phase_t::search;
    return nullptr;
}

// search moves m_scan to the next record that makes sense, or to end. A short text may be chance,
// so the record after it has to make sense too.
//
// Returns: false if more bytes are needed
bool traceReader_t::search(size_t end)
{
    for (; m_scan < end; ++m_scan) {
        const look_t found = look(m_scan, glance);
        if (found == look_t::more)
            return false;
        if (found == look_t::sure)
            return true;
        if (found != look_t::weak)
            continue;
        const size_t next = m_scan + recordHeaderSize + textLength(rest(m_scan));
        const look_t follows = look(next, glance);
        if (follows == look_t::more)
            return false;
        if (follows != look_t::no)
            return true;
    }
    return m_ended || end < m_bytes.size();
}

// judged: the judge's last look was at this record, and at all of it
const traceItem_t* traceReader_t::takeRecord(bool judged)
{
    const auto bytes = rest(m_at);
    const size_t length = textLength(bytes);
    auto* record = std::get_if<traceRecord_t>(&m_item);
    if (!record)
        record = &m_item.emplace<traceRecord_t>();
    record->offset = m_base + m_at;
    record->thread = static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) |
                     static_cast<uint32_t>(bytes[3]) << 24;
    record->level = static_cast<char>(bytes[4]);
    record->mended = false;
    if (judged)
        record->text.swap(m_judge.text());
    else
        unscramble(bytes.subspan(recordHeaderSize, length), record->text);
    if (!judged || !m_judge.isValid()) {
        std::string valid = validUtf8(record->text);
        record->mended = valid.size() != record->text.size();
        record->text = std::move(valid);
    }
    m_at += recordHeaderSize + length;
    return &m_item;
}

const traceItem_t* traceReader_t::give(traceItem_t item)
{
    m_item = std::move(item);
    return &m_item;
}

const traceItem_t* traceReader_t::takeDamage(size_t end, std::string reason)
{
    traceDamage_t damage{m_base + m_at, end - m_at, std::move(reason)};
    // The tracer writes a text of 64 KiB or more with the low 16 bits of its length.
    if (damage.bytes % 0x10000 == 0)
        damage.reason += "; perhaps the text before it was too long for its length field";
    m_at = end;
    return give(std::move(damage));
}

} // namespace tracecore
