#pragma once

#include "consumer.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace vltrace {

// toolError_t ends the work on a file or the whole command; its text is one line with a hint.
class toolError_t : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// pathOf gives the path of a UTF-8 name.
std::filesystem::path pathOf(const std::string& name);

// traceFeed_t leads the bytes of one file through reader and walker to a consumer.
class traceFeed_t
{
public:
    explicit traceFeed_t(traceConsumer_i& consumer) : m_consumer(consumer) {}
    void feed(std::span<const uint8_t> bytes);
    void finish();

    uint64_t records = 0;
    bool marked = false; // the file begins as a trace does
    uint64_t damages = 0;
    uint64_t skipped = 0; // bytes
    uint64_t size = 0;    // bytes fed

private:
    void drain();

    traceConsumer_i& m_consumer;
    tracecore::traceReader_t m_reader;
    tracecore::traceWalker_t m_walker;
};

// readTrace reads a whole file.
//
// name:    UTF-8
// Returns: the feed, for its counts
// Errors:  toolError_t if the file can't be read
traceFeed_t readTrace(const std::string& name, traceConsumer_i& consumer);

// traceFollower_t reads a growing file. It is opened for each look and never held, so that it can
// be made anew or removed meanwhile; that it was is seen by a smaller size or another beginning.
class traceFollower_t
{
public:
    enum class change_t {
        none,      // nothing new
        grown,     // new bytes have gone to the consumer
        restarted, // another file of that name: it has been read from its beginning
        missing,   // can't be opened now
    };

    traceFollower_t(std::string name, traceConsumer_i& consumer);
    change_t poll();

private:
    bool isSameFile(std::istream& file) const;

    std::string m_name;
    traceConsumer_i& m_consumer;
    std::optional<traceFeed_t> m_feed; // of the file that has the name now
    std::vector<uint8_t> m_beginning;  // of what was read: as much as tells two files apart
};

} // namespace vltrace
