#pragma once

#include "consumer.h"
#include "filter.h"
#include "shared/toolerror.h"
#include "tracefeed.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace vltrace {

// traceMerge_t leads the items of inputs to a consumer: the records in the order of their time, as
// far as each file is in order in itself; headers first.
class traceMerge_t
{
public:
    // complain: called with what is wrong with a file
    traceMerge_t(traceConsumer_i& consumer, const filter_t& filter,
                 std::function<void(const CToolError&)> complain)
        : m_consumer(consumer), m_filter(filter), m_complain(std::move(complain))
    {}

    // run reads all that there is. An input that fails is left out from there on.
    //
    // labelled: they are some of several, whose records have to be distinguished
    // Returns:  the exit status
    int run(const std::vector<traceInput_t*>& inputs, bool labelled = false);

    // finish ends the consumer's work. Warns if the filters left nothing of what was read.
    void finish();

    // flush brings what there is of an input in its order, for one that has been replaced.
    void flush(traceInput_t& input);

private:
    bool advance(traceInput_t& input); // false at its end
    void give(traceInput_t& input);
    void end(traceInput_t& input);

    traceConsumer_i& m_consumer;
    const filter_t& m_filter;
    std::function<void(const CToolError&)> m_complain;
    int m_status = 0;
    size_t m_read = 0; // records other than stamps
    size_t m_wanted = 0;
};

// inputs_t is how the names of a command line are read.
struct inputs_t {
    const std::vector<std::string>& names; // of files and folders
    std::istream& standardInput;
    const filter_t& filter;
    std::function<void(const CToolError&)> complain;
};

// readInOrder reads the files together, in the order of time; readEach one after the other. One that
// can't be read doesn't stop the others.
//
// Returns: the exit status
int readInOrder(const inputs_t& inputs, traceConsumer_i& consumer);
int readEach(const inputs_t& inputs, traceConsumer_i& consumer);

// traceFollower_t reads files that grow, and those that come into a folder meanwhile.
class traceFollower_t
{
public:
    // Errors: CToolError for a name that is wrong
    traceFollower_t(const inputs_t& inputs, traceConsumer_i& consumer);
    void poll(); // reads what is new

private:
    void open(const std::string& name);
    void openNew();

    inputs_t m_inputs;
    traceMerge_t m_merge;
    std::vector<std::string> m_folders;
    std::vector<std::unique_ptr<traceInput_t>> m_open;
};

} // namespace vltrace
