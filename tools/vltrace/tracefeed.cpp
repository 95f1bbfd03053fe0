#include "tracefeed.h"

#include "shared/filesystem.h"
#include "shared/inputfile.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <istream>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t beginningSize = 4096; // holds the header's time stamp

} // namespace

void traceFeed_t::append(std::span<const uint8_t> bytes)
{
    m_reader.append(bytes);
}

void traceFeed_t::count(const traceItem_t& item)
{
    cutOffset.reset();
    if (const auto* const damage = std::get_if<traceDamage_t>(&item)) {
        ++damages;
        skipped += damage->bytes;
        cutOffset = damage->offset;
    }
}

const traceItem_t* traceFeed_t::nextProven()
{
    if (m_given < m_held.size() && m_begun)
        return &m_held[m_given++];
    while (const traceItem_t* const item = m_reader.next()) {
        count(*item);
        if (m_begun)
            return item;
        m_held.push_back(*item);
        const auto* const header = std::get_if<traceHeader_t>(item);
        m_begun = std::holds_alternative<traceRecord_t>(*item) ||
                  (header && !header->lines.empty() && header->lines[0] == "trace3");
        if (m_begun)
            return &m_held[m_given++];
    }
    return nullptr;
}

const traceItem_t* traceFeed_t::next()
{
    const traceItem_t* const item = nextProven();
    if (item)
        m_step = m_walker.take(*item);
    return item;
}

traceInput_t::traceInput_t(source_t source, std::istream& standardInput, size_t pieceSize,
                           bool follows)
    : m_source(std::move(source)),
      m_standardInput(standardInput),
      m_pieceSize(std::max(pieceSize, gunzip_t::beginning)),
      m_follows(follows),
      m_held(m_source.name == "-" || entryKind(pathOf(m_source.name)) == entryKind_t::other),
      m_feed(std::make_unique<traceFeed_t>())
{
    if (m_source.name != "-")
        m_file = openInput(m_source.name);
    if (!m_held)
        m_file.close();
}

std::istream* traceInput_t::open()
{
    if (m_source.name == "-")
        return &m_standardInput;
    if (m_held)
        return &m_file;
    if (m_follows)
        m_file = std::ifstream(pathOf(m_source.name), std::ios::binary);
    else
        m_file = openInput(m_source.name);
    if (!m_file)
        return nullptr;
    m_file.seekg(static_cast<std::streamoff>(m_offset));
    return &m_file;
}

std::vector<uint8_t> traceInput_t::readFile()
{
    std::istream* const stream = open();
    if (!stream)
        return {};
    static_assert(sizeof(char) == sizeof(uint8_t));
    std::vector<uint8_t> piece(m_pieceSize);
    stream->read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(piece.size()));
    piece.resize(static_cast<size_t>(stream->gcount()));
    if (!m_follows)
        checkRead(m_source.name, *stream);
    if (!m_held)
        m_file.close();
    m_offset += piece.size();
    const size_t missing = std::min(beginningSize - m_beginning.size(), piece.size());
    m_beginning.insert(m_beginning.end(), piece.begin(),
                       piece.begin() + static_cast<std::ptrdiff_t>(missing));
    return piece;
}

bool traceInput_t::readPiece()
{
    std::vector<uint8_t> piece(m_gunzip ? m_pieceSize : 0);
    piece.resize(m_gunzip ? m_gunzip->take(piece) : 0);
    while (piece.empty()) {
        const bool first = m_offset == 0;
        std::vector<uint8_t> read = readFile();
        if (read.empty())
            return false;
        if (first && gunzip_t::begins(read))
            m_gunzip = std::make_unique<gunzip_t>();
        if (!m_gunzip) {
            piece = std::move(read);
            break;
        }
        m_gunzip->append(std::move(read));
        piece.resize(m_pieceSize);
        piece.resize(m_gunzip->take(piece));
    }
    m_feed->append(piece);
    return true;
}

bool traceInput_t::advance()
{
    for (;;) {
        m_item = m_feed->next();
        if (m_item)
            return true;
        if (m_finished)
            break;
        if (!readPiece()) {
            if (m_follows)
                return false;
            finish();
        }
    }
    if (m_follows || m_feed->isTrace())
        return false;
    const std::string_view mark = "trace3";
    const bool marked = m_beginning.size() >= mark.size() &&
                        std::equal(mark.begin(), mark.end(), m_beginning.begin());
    throw CToolError(m_source.shown +
                         (marked ? " is cut or damaged: it has no more than the mark of a trace"
                                 : " is no trace: it is " + describeBytes(m_beginning)),
                     "trace files end in .trc3, and have something in them");
}

void traceInput_t::finish() noexcept
{
    m_feed->finish();
    m_finished = true;
}

void traceInput_t::restart()
{
    m_feed = std::make_unique<traceFeed_t>();
    m_gunzip.reset();
    m_offset = 0;
    m_beginning.clear();
    m_finished = false;
}

// A smaller size or another beginning shows another file.
bool traceInput_t::wasReplaced()
{
    std::ifstream file(pathOf(m_source.name), std::ios::binary);
    if (!file)
        return false;
    std::vector<char> beginning(m_beginning.size());
    file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    if (!file || !std::equal(m_beginning.begin(), m_beginning.end(), beginning.begin(),
                             [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }))
        return true;
    file.seekg(0, std::ios::end);
    return file.tellg() < static_cast<std::streamoff>(m_offset);
}

} // namespace vltrace
