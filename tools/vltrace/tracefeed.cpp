#include "tracefeed.h"

#include "shared/filesystem.h"
#include "shared/inputfile.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <fstream>
#include <istream>
#include <system_error>
#include <utility>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t pieceSize = 1 << 18;
constexpr size_t beginningSize = 1024; // holds the header's time stamp

// readPiece fills piece from the file, or leaves it empty at the end.
bool readPiece(std::istream& file, std::vector<uint8_t>& piece)
{
    static_assert(sizeof(char) == sizeof(uint8_t));
    piece.resize(pieceSize);
    file.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(piece.size()));
    piece.resize(static_cast<size_t>(file.gcount()));
    return !piece.empty();
}

} // namespace

void traceFeed_t::feed(std::span<const uint8_t> bytes)
{
    size += bytes.size();
    m_reader.append(bytes);
    drain();
}

void traceFeed_t::finish()
{
    m_reader.finish();
    drain();
    if (m_begun)
        m_consumer.end();
}

void traceFeed_t::drain()
{
    while (auto item = m_reader.next()) {
        const auto* const damage = std::get_if<traceDamage_t>(&*item);
        const auto* const header = std::get_if<traceHeader_t>(&*item);
        cutOffset.reset();
        if (damage) {
            ++damages;
            skipped += damage->bytes;
            cutOffset = damage->offset;
        }
        const bool marked = header && !header->lines.empty() && header->lines[0] == "trace3";
        const bool proves = marked || (!damage && !header);
        if (!m_begun && proves) {
            m_begun = true;
            m_consumer.begin(m_name);
            for (const traceItem_t& held : m_held)
                pass(held);
            m_held.clear();
        }
        if (m_begun)
            pass(*item);
        else
            m_held.push_back(std::move(*item));
    }
}

void traceFeed_t::pass(const traceItem_t& item)
{
    m_consumer.take(item, m_walker.take(item));
}

traceFeed_t readTrace(const std::string& name, std::istream& standardInput,
                      traceConsumer_i& consumer)
{
    std::ifstream file;
    if (name != "-")
        file = openInput(name);
    std::istream& stream = name == "-" ? standardInput : file;
    traceFeed_t feed(shownInput(name), consumer);
    std::vector<uint8_t> beginning;
    for (std::vector<uint8_t> piece; readPiece(stream, piece);) {
        if (beginning.empty())
            beginning = piece;
        feed.feed(piece);
    }
    feed.finish();
    checkRead(name, stream);
    if (!feed.isTrace())
        throw CToolError(shownInput(name) + " is no trace: it is " + describeBytes(beginning),
                         "trace files end in .trc3, and have something in them");
    return feed;
}

traceFollower_t::traceFollower_t(std::string name, traceConsumer_i& consumer)
    : m_name(std::move(name)), m_consumer(consumer)
{
    openInput(m_name); // fails at once for a name that is wrong
}

bool traceFollower_t::isSameFile(std::istream& file) const
{
    std::vector<char> beginning(m_beginning.size());
    file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    if (!file || !std::equal(m_beginning.begin(), m_beginning.end(), beginning.begin(),
                             [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }))
        return false;
    file.seekg(0, std::ios::end);
    return file.tellg() >= static_cast<std::streamoff>(m_feed->size);
}

traceFollower_t::change_t traceFollower_t::poll()
{
    std::ifstream file(pathOf(m_name), std::ios::binary);
    if (!file)
        return change_t::missing;
    const bool restarted = m_feed && !isSameFile(file);
    if (restarted) {
        m_feed->finish();
        m_feed.reset();
        m_beginning.clear();
    }
    if (!m_feed)
        m_feed.emplace(m_name, m_consumer);

    file.clear();
    file.seekg(static_cast<std::streamoff>(m_feed->size));
    bool grown = false;
    for (std::vector<uint8_t> piece; readPiece(file, piece); grown = true) {
        const size_t missing = std::min(beginningSize - m_beginning.size(), piece.size());
        m_beginning.insert(m_beginning.end(), piece.begin(),
                           piece.begin() + static_cast<std::ptrdiff_t>(missing));
        m_feed->feed(piece);
    }
    return restarted ? change_t::restarted : grown ? change_t::grown : change_t::none;
}

} // namespace vltrace
