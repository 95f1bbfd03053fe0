#pragma once

#include "formats/trace/recordjudge.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

// Reading of trace files, damaged ones too. Portable: no platform header.
namespace tracecore {

// traceHeader_t is the text header of a file, without the full stop that ends it.
struct traceHeader_t {
    std::vector<std::string> lines; // without line ends, valid UTF-8
};

// traceRecord_t is one record with its text made readable.
struct traceRecord_t {
    uint64_t offset = 0; // of the record in the file
    uint32_t thread = 0;
    char level = 0;      // one of traceLevels
    std::string text;    // valid UTF-8
    bool mended = false; // bytes of the text that were no UTF-8 have been replaced by U+FFFD
};

// traceDamage_t describes bytes that make no sense or, with bytes = 0, something that is missing.
struct traceDamage_t {
    uint64_t offset = 0;
    uint64_t bytes = 0; // skipped
    std::string reason; // a clause such as "no record can begin here"
};

using traceItem_t = std::variant<traceHeader_t, traceRecord_t, traceDamage_t>;

// traceReader_t turns the bytes of a trace file into its header, its records and the damage between
// them, in the order of the file. Bytes come in pieces of any size. It never fails: after damage it
// goes on with the next bytes that look like a record. A record has no mark to find it by, so this
// is judged by its level, its length, its text and the record after it. Time is linear in the
// file's size; memory is what was appended at once, and the record or the damage at hand.
//
//     while (read(piece)) { reader.append(piece); while (auto item = reader.next()) ... }
//     reader.finish(); while (auto item = reader.next()) ...
class traceReader_t
{
public:
    void append(std::span<const uint8_t> bytes);

    // finish says that no more bytes will come, so that a record which lacks some is cut short.
    void finish() noexcept { m_ended = true; }

    // Returns: the next item, the reader's own until the next call; null if more bytes are needed,
    //          or at the end
    const traceItem_t* next();

private:
    enum class phase_t { mark, header, records, search };

    std::span<const uint8_t> rest(size_t at) const noexcept;
    look_t look(size_t at, size_t textLimit);
    const traceItem_t* nextHeader();
    const traceItem_t* nextRecord();
    bool search(size_t end);
    const traceItem_t* takeRecord(bool judged);
    const traceItem_t* takeDamage(size_t end, std::string reason);
    const traceItem_t* endHeader(std::string missing);
    const traceItem_t* give(traceItem_t item);

    std::vector<uint8_t> m_bytes;
    size_t m_at = 0;       // the next byte to be understood, in m_bytes
    size_t m_scan = 0;     // while searching: the next place to look at
    uint64_t m_base = 0;   // offset in the file of m_bytes[0]
    uint64_t m_wasted = 0; // bytes of text that were read and came to nothing
    bool m_ended = false;
    phase_t m_phase = phase_t::mark;
    traceHeader_t m_header;
    size_t m_headerSize = 0;
    std::string m_reason;
    recordJudge_t m_judge;
    traceItem_t m_item; // the one that was given last
};

} // namespace tracecore
