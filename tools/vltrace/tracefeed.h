#pragma once

#include "consumer.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vltrace {

// traceFeed_t leads the bytes of one file through reader and walker to a consumer. The consumer
// gets nothing until they prove to be a trace, by the header's mark or by a record.
class traceFeed_t
{
public:
    // name: the file's, for the consumer
    traceFeed_t(std::string name, traceConsumer_i& consumer)
        : m_name(std::move(name)), m_consumer(consumer)
    {}
    void feed(std::span<const uint8_t> bytes);
    void finish(); // ends the file for the consumer, too

    bool isTrace() const noexcept { return m_begun; }

    uint64_t damages = 0;
    uint64_t skipped = 0;              // bytes
    uint64_t size = 0;                 // bytes fed
    std::optional<uint64_t> cutOffset; // of the damage that the file ends with

private:
    void drain();
    void pass(const tracecore::traceItem_t& item);

    std::string m_name;
    traceConsumer_i& m_consumer;
    tracecore::traceReader_t m_reader;
    tracecore::traceWalker_t m_walker;
    std::vector<tracecore::traceItem_t> m_held; // a header and the damage after it, at most
    bool m_begun = false;
};

// readTrace reads a whole file.
//
// name:    UTF-8; "-" is standardInput
// Returns: the feed, for its counts
// Errors:  CToolError if the file can't be read, or is no trace
traceFeed_t readTrace(const std::string& name, std::istream& standardInput,
                      traceConsumer_i& consumer);

// traceFollower_t reads a growing file. It is opened for each look and never held, so that it can
// be replaced or removed meanwhile; a smaller size or another beginning shows a new file.
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
    std::vector<uint8_t> m_beginning;  // of what was read: enough to recognise another file
};

} // namespace vltrace
