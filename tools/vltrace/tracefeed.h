#pragma once

#include "formats/trace/tracewalker.h"
#include "gunzip.h"
#include "source.h"

#include <cstdint>
#include <fstream>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vltrace {

// traceFeed_t leads the bytes of one file through reader and walker. It gives nothing until they
// prove to be a trace, by the header's mark or by a record.
class traceFeed_t
{
public:
    void append(std::span<const uint8_t> bytes);
    void finish() noexcept { m_reader.finish(); }

    // Returns: the next item, valid until the next call; null if more bytes are needed, or at the
    //          end
    const tracecore::traceItem_t* next();
    const tracecore::traceStep_t& step() const noexcept { return m_step; } // of that item

    bool isTrace() const noexcept { return m_begun; }

    uint64_t damages = 0;
    uint64_t skipped = 0;              // bytes
    std::optional<uint64_t> cutOffset; // of the damage that the file ends with

private:
    const tracecore::traceItem_t* nextProven();
    void count(const tracecore::traceItem_t& item);

    tracecore::traceReader_t m_reader;
    tracecore::traceWalker_t m_walker;
    tracecore::traceStep_t m_step;
    std::vector<tracecore::traceItem_t> m_held; // a header, damage after it and the proof, at most
    size_t m_given = 0;                         // of those
    bool m_begun = false;
};

// traceInput_t reads one file, compressed by gzip or not, piece by piece. A file is opened for each
// piece and not held, so that any number of them can be read together, and one that grows can be
// replaced or removed meanwhile.
class traceInput_t
{
public:
    // standardInput: read if the source's name is "-"
    // pieceSize:     bytes
    // follows:       the file grows: its present end is none
    //
    // Errors: CToolError if the file can't be opened
    traceInput_t(source_t source, std::istream& standardInput, size_t pieceSize, bool follows);

    // advance goes to the next item.
    //
    // Returns: false at the end; if the file is followed, only for now
    // Errors:  CToolError if the file can't be read, or is no trace
    bool advance();
    const tracecore::traceItem_t& item() const noexcept { return *m_item; }
    const tracecore::traceStep_t& step() const noexcept { return m_feed->step(); }

    // wasReplaced says whether another file has come under the name: what there is of the old one
    // has been read and is to be finished. restart goes over to it.
    bool wasReplaced();
    void finish() noexcept;
    void restart();

    bool isFinished() const noexcept { return m_finished; }

    // isWhole is false for a compressed file that is cut or damaged: nothing after that can be read.
    bool isWhole() const noexcept { return !m_gunzip || m_gunzip->isWhole(); }

    source_t& source() noexcept { return m_source; }
    const traceFeed_t& feed() const noexcept { return *m_feed; }
    bool begun = false; // for the use of who reads: the consumer knows of it

private:
    bool readPiece();
    std::vector<uint8_t> readFile(); // the next bytes of the file; none at its end
    std::istream* open();            // at the next piece; null if a followed file isn't there
    void checkTrace() const;

    source_t m_source;
    std::istream& m_standardInput;
    size_t m_pieceSize;
    bool m_follows;
    bool m_finished = false;
    std::ifstream m_file;
    bool m_held;           // a pipe or the like: what was read can't be read again
    uint64_t m_offset = 0; // of what comes next in the file
    std::unique_ptr<gunzip_t> m_gunzip;
    std::unique_ptr<traceFeed_t> m_feed;
    std::vector<uint8_t> m_beginning; // of what was read: enough to recognise another file
    const tracecore::traceItem_t* m_item = nullptr;
};

} // namespace vltrace
