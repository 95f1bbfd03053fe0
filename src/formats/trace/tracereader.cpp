#include "formats/trace/tracereader.h"

#include "formats/trace/recordformat.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tracecore {

namespace {

constexpr size_t headerLineLimit = 1024; // the tracer's own lines have at most 262 bytes
constexpr size_t headerLimit = 1 << 16;
constexpr size_t mendedLimit = 4096;  // longest text that is mended rather than searched through
constexpr size_t glance = 256;        // bytes of text that decide whether a search ends at a record
constexpr size_t keptBytes = 1 << 16; // used bytes are released in pieces of at least this size

// sequenceAt gives the length of the UTF-8 sequence at the front of bytes, which aren't empty: 0 if
// there can be none, more than there is if it is cut.
size_t sequenceAt(std::span<const uint8_t> bytes) noexcept
{
    const uint8_t lead = bytes[0];
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    for (size_t i = 1; i < std::min(length, bytes.size()); ++i) {
        uint8_t low = 0x80;
        uint8_t high = 0xBF;
        if (i == 1) { // no overlong forms, no surrogates, nothing above U+10FFFF
            low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : low;
            high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : high;
        }
        if (bytes[i] < low || bytes[i] > high)
            return 0;
    }
    return length;
}

bool isTextByte(uint8_t byte) noexcept
{
    return byte >= 0x20 || byte == '\t' || byte == '\n' || byte == '\r';
}

// A character cut at the end is sane: a length that wrapped may end within one.
bool isSaneUtf8(std::span<const uint8_t> bytes) noexcept
{
    while (!bytes.empty()) {
        const size_t length = sequenceAt(bytes);
        if (length == 0 || !isTextByte(bytes[0]))
            return false;
        bytes = bytes.subspan(std::min(length, bytes.size()));
    }
    return true;
}

// matches compares text with a pattern in which 0 stands for any digit.
bool matches(std::span<const uint8_t> text, std::string_view pattern) noexcept
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                      [](uint8_t c, char p) {
                          return p == '0' ? c >= '0' && c <= '9' : static_cast<char>(c) == p;
                      });
}

bool startsWithStatus(std::span<const uint8_t> text) noexcept
{
    size_t i = !text.empty() && text[0] == '-' ? 1 : 0;
    const size_t first = i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9')
        ++i;
    return i > first && i - first <= 10 && i < text.size() && text[i] == ' ';
}

bool isKnown(char level) noexcept
{
    return level != 0 && std::string_view("><UEDTtN").find(level) != std::string_view::npos;
}

// Stamps and exits have one possible length each.
bool isLengthOf(char level, size_t length) noexcept
{
    switch (level) {
    case '<':
        return length == 0;
    case 'T':
        return length == 12;
    case 't':
        return length == 8;
    case 'N':
        return length == 10;
    default:
        return true;
    }
}

size_t textLength(std::span<const uint8_t> record) noexcept
{
    return static_cast<size_t>(record[5] | record[6] << 8);
}

} // namespace

std::string validUtf8(std::span<const uint8_t> bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const size_t length = sequenceAt(bytes);
        if (length == 0 || length > bytes.size()) {
            text += "\uFFFD";
            bytes = bytes.subspan(1);
            continue;
        }
        text.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        bytes = bytes.subspan(length);
    }
    return text;
}

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

std::optional<traceItem_t> traceReader_t::next()
{
    for (;;) {
        switch (m_phase) {
        case phase_t::mark:
        case phase_t::header:
            return nextHeader();
        case phase_t::search:
            if (!search(m_bytes.size()))
                return std::nullopt;
            m_phase = phase_t::records;
            return takeDamage(m_scan, m_reason);
        case phase_t::records:
            if (auto item = nextRecord())
                return item;
            if (m_phase == phase_t::records)
                return std::nullopt;
        }
    }
}

std::optional<traceItem_t> traceReader_t::nextHeader()
{
    for (;;) {
        const auto bytes = rest(m_at).first(std::min(rest(m_at).size(), headerLineLimit));
        const auto end = std::find_if(bytes.begin(), bytes.end(),
                                      [](uint8_t byte) { return byte < 0x20 && byte != '\t'; });
        const auto line = bytes.first(static_cast<size_t>(end - bytes.begin()));
        const auto behind = bytes.subspan(line.size());
        const bool ended = behind.size() >= 2 && behind[0] == '\r' && behind[1] == '\n';
        if (!ended && !m_ended && bytes.size() < headerLineLimit &&
            (behind.empty() || (behind.size() == 1 && behind[0] == '\r')))
            return std::nullopt; // the line continues in bytes that are still to come
        if (m_phase == phase_t::mark) {
            m_phase = phase_t::header;
            if (m_bytes.empty()) { // an empty file has nothing wrong with it
                m_phase = phase_t::records;
                return std::nullopt;
            }
            if (!matches(line, "trace3")) {
                if (!ended)
                    return endHeader("there is no header");
                return traceDamage_t{0, 0, "the header doesn't begin with its mark, \"trace3\""};
            }
        }
        if (!ended || m_headerSize > headerLimit)
            return endHeader("the header has no end");
        m_at += line.size() + 2;
        m_headerSize += line.size() + 2;
        if (matches(line, "."))
            return endHeader({});
        m_header.lines.push_back(validUtf8(line));
    }
}

// The lines that there are come first, then what is missing from the header.
traceItem_t traceReader_t::endHeader(std::string missing)
{
    const bool hasLines = !m_header.lines.empty();
    if (!missing.empty() && hasLines) {
        m_headerSize = headerLimit + 1; // the next call ends up here again, with no lines left
        return std::exchange(m_header, {});
    }
    m_phase = phase_t::records;
    if (missing.empty())
        return std::exchange(m_header, {});
    return traceDamage_t{m_base + m_at, 0, std::move(missing)};
}

// look judges the bytes at a place by themselves: no record, one that is cut by the end of the
// file, one that needs more bytes to be judged, one that could be chance, or a sure one. At most
// textLimit bytes of text are looked at.
traceReader_t::look_t traceReader_t::look(size_t at, size_t textLimit) const
{
    const auto bytes = rest(at);
    if (bytes.size() > 4 && !isKnown(static_cast<char>(bytes[4])))
        return look_t::no;
    if (bytes.size() < recordHeaderSize)
        return m_ended ? look_t::cut : look_t::more;
    const auto level = static_cast<char>(bytes[4]);
    const size_t length = textLength(bytes);
    if (!isLengthOf(level, length))
        return look_t::no;
    const auto text = bytes.subspan(recordHeaderSize);
    const bool whole = text.size() >= length;
    if (!saneText(text.first(std::min({length, text.size(), textLimit})), level))
        return look_t::no;
    if (!whole)
        return m_ended ? look_t::cut : look_t::more;
    return length >= 8 ? look_t::sure : look_t::weak;
}

bool traceReader_t::saneText(std::span<const uint8_t> scrambled, char level) const
{
    const auto isSane = [&](size_t length) {
        m_text.assign(scrambled.begin(), scrambled.begin() + static_cast<std::ptrdiff_t>(length));
        unscrambleText(m_text.data(), length);
        return isSaneUtf8(m_text);
    };
    // Chance bytes give themselves away within a few characters.
    if ((scrambled.size() > 32 && !isSane(32)) || !isSane(scrambled.size()))
        return false;
    switch (level) {
    case 'T':
        return scrambled.size() < 12 || matches(m_text, "00:00:00.000");
    case 't':
        return scrambled.size() < 8 || matches(m_text, "00/00/00");
    case 'N':
        return scrambled.size() < 10 || matches(m_text, "00-00-0000");
    case 'E':
        return scrambled.size() < 12 || startsWithStatus(m_text);
    default:
        return true;
    }
}

std::optional<traceItem_t> traceReader_t::nextRecord()
{
    const auto bytes = rest(m_at);
    if (bytes.empty())
        return std::nullopt;
    m_scan = m_at + 1;
    const size_t length = bytes.size() < recordHeaderSize ? 0 : textLength(bytes);
    // Long texts that turn out wrong again and again use up the patience; then a glance has to do.
    const uint64_t patience = 4 * (m_base + m_at) + (1 << 20);
    const size_t limit = m_wasted + length <= patience ? std::max(length, glance) : glance;
    const look_t found = look(m_at, limit);
    if (found == look_t::weak || found == look_t::sure)
        return takeRecord();
    if (found == look_t::more)
        return std::nullopt;
    if (found == look_t::no) {
        m_wasted += limit == glance ? 0 : length;
        // With a record right after it, only the text is damaged. If there is one within it, the
        // length is damaged too, and happens to end where another record begins.
        const bool framed =
            bytes.size() >= recordHeaderSize && isKnown(static_cast<char>(bytes[4])) &&
            isLengthOf(static_cast<char>(bytes[4]), length) && length <= mendedLimit;
        const size_t behind = m_at + recordHeaderSize + length;
        const look_t follows = framed ? look(behind, glance) : look_t::no;
        if (framed && follows == look_t::more)
            return std::nullopt;
        if (follows == look_t::weak || follows == look_t::sure ||
            (framed && m_ended && behind == m_bytes.size())) {
            if (!search(behind))
                return std::nullopt;
            if (m_scan == behind)
                return takeRecord();
        }
    }
    m_reason = found == look_t::cut ? "a record is cut short" : "no record can begin here";
    m_phase = phase_t::search;
    return std::nullopt;
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
        const size_t behind = m_scan + recordHeaderSize + textLength(rest(m_scan));
        const look_t follows = look(behind, glance);
        if (follows == look_t::more)
            return false;
        if (follows != look_t::no)
            return true;
    }
    return m_ended || end < m_bytes.size();
}

traceItem_t traceReader_t::takeRecord()
{
    const auto bytes = rest(m_at);
    const auto text = bytes.subspan(recordHeaderSize, textLength(bytes));
    m_text.assign(text.begin(), text.end());
    unscrambleText(m_text.data(), m_text.size());

    traceRecord_t record;
    record.offset = m_base + m_at;
    record.thread = static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) |
                    static_cast<uint32_t>(bytes[3]) << 24;
    record.level = static_cast<char>(bytes[4]);
    record.text = validUtf8(m_text);
    record.mended = record.text.size() != m_text.size();
    m_at += recordHeaderSize + text.size();
    return record;
}

traceItem_t traceReader_t::takeDamage(size_t end, std::string reason)
{
    traceDamage_t damage{m_base + m_at, end - m_at, std::move(reason)};
    // The tracer writes a text of 64 KiB or more with the low 16 bits of its length.
    if (damage.bytes % 0x10000 == 0)
        damage.reason += "; perhaps the text before it was too long for its length field";
    m_at = end;
    return damage;
}

} // namespace tracecore
