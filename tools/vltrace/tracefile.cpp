#include "tracefile.h"

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

std::ifstream openTrace(const std::string& name)
{
    const std::filesystem::path path = pathOf(name);
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw toolError_t(name + " is a folder: name the trace files in it");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw toolError_t(name + " can't be opened: check the name and whether you may read it");
    return file;
}

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

std::filesystem::path pathOf(const std::string& name)
{
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

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
}

void traceFeed_t::drain()
{
    while (const auto item = m_reader.next()) {
        if (const auto* damage = std::get_if<traceDamage_t>(&*item)) {
            ++damages;
            skipped += damage->bytes;
        } else if (const auto* header = std::get_if<traceHeader_t>(&*item)) {
            marked = !header->lines.empty() && header->lines[0] == "trace3";
        } else {
            ++records;
        }
        m_consumer.take(*item, m_walker.take(*item));
    }
}

traceFeed_t readTrace(const std::string& name, traceConsumer_i& consumer)
{
    std::ifstream file = openTrace(name);
    consumer.begin(name);
    traceFeed_t feed(consumer);
    std::vector<uint8_t> piece;
    while (readPiece(file, piece))
        feed.feed(piece);
    feed.finish();
    consumer.end();
    if (file.bad())
        throw toolError_t(name + " could be read only in part: check the drive that it lies on");
    return feed;
}

traceFollower_t::traceFollower_t(std::string name, traceConsumer_i& consumer)
    : m_name(std::move(name)), m_consumer(consumer)
{
    openTrace(m_name); // a name that is wrong from the start is told at once
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
        m_consumer.end();
        m_feed.reset();
        m_beginning.clear();
    }
    if (!m_feed) {
        m_consumer.begin(m_name);
        m_feed.emplace(m_consumer);
    }

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
