#include "merge.h"

#include "lines.h"
#include "shared/filesystem.h"
#include "shared/inputfile.h"

#include <algorithm>
#include <iterator>
#include <set>

using namespace tracecore;

namespace vltrace {

namespace {

constexpr size_t largestPiece = 1 << 18;
constexpr size_t smallestPiece = 1 << 14;
constexpr size_t allPieces = 1 << 24; // of files that are read together

// head_t is an input with the time of its next item.
struct head_t {
    int64_t time;
    traceInput_t* input;

    bool operator>(const head_t& other) const
    {
        return time != other.time ? time > other.time
                                  : input->source().number > other.input->source().number;
    }
};

head_t headOf(traceInput_t& input)
{
    return {input.step().moment.milliseconds(), &input};
}

// expand gives the files that a name stands for.
std::vector<std::string> expand(const std::string& name)
{
    if (name != "-" && entryKind(pathOf(name)) == entryKind_t::folder)
        return tracesIn(name);
    return {name};
}

std::vector<source_t> sourcesOf(const inputs_t& inputs, int& status)
{
    std::vector<source_t> sources;
    for (const std::string& name : inputs.names) {
        try {
            for (const std::string& file : expand(name))
                sources.push_back(sourceOf(file, sources.size() + 1));
        } catch (const CToolError& error) {
            inputs.complain(error);
            status = error.ExitStatus();
        }
    }
    return sources;
}

} // namespace

bool traceMerge_t::advance(traceInput_t& input)
{
    try {
        if (input.advance())
            return true;
        if (!input.isFinished())
            return false; // for now
    } catch (const CToolError& error) {
        m_complain(error);
        m_status = error.ExitStatus();
    }
    end(input);
    return false;
}

void traceMerge_t::end(traceInput_t& input)
{
    if (!input.begun)
        return;
    m_consumer.end(input.source());
    input.begun = false;
    const traceFeed_t& feed = input.feed();
    const std::string name = input.source().shown;
    if (!input.isWhole())
        m_complain(CToolError(name + " is cut or damaged: the rest of its gzip data can't be read",
                              "copy it again", exitStatus::good));
    else if (feed.cutOffset)
        m_complain(CToolError(name + " is cut at byte " + std::to_string(*feed.cutOffset) +
                                  ": the rest is no whole record",
                              "is it still being written?", exitStatus::good));
    else if (feed.damages > 0)
        m_complain(CToolError(name + " is damaged in " + std::to_string(feed.damages) +
                                  (feed.damages == 1 ? " place, " : " places, ") +
                                  skippedText(feed.skipped),
                              "vltrace cat shows where", exitStatus::good));
}

void traceMerge_t::give(traceInput_t& input)
{
    const traceItem_t& item = input.item();
    const traceStep_t& step = input.step();
    if (const auto* record = std::get_if<traceRecord_t>(&item)) {
        const message_t message = messageOf(*record);
        traceEvent_t event{input.source(), *record, step, message, kindOf(record->level, message),
                           false};
        event.wanted = m_filter.wants(event);
        m_read += event.kind != kind_t::stamp;
        m_wanted += event.wanted;
        m_consumer.takeRecord(event);
    } else if (const auto* header = std::get_if<traceHeader_t>(&item)) {
        m_consumer.takeHeader(input.source(), *header);
    } else if (const auto* damage = std::get_if<traceDamage_t>(&item)) {
        m_consumer.takeDamage(input.source(), *damage, step);
    }
}

int traceMerge_t::run(const std::vector<traceInput_t*>& inputs, bool labelled)
{
    m_status = exitStatus::good;
    std::vector<traceInput_t*> ready;
    std::ranges::copy_if(inputs, std::back_inserter(ready),
                         [this](traceInput_t* input) { return advance(*input); });
    if (!labelled) {
        std::vector<source_t*> sources;
        sources.reserve(ready.size());
        for (traceInput_t* input : ready)
            sources.push_back(&input->source());
        labelSources(sources);
    }
    std::vector<head_t> heads; // a heap, the earliest on top
    for (traceInput_t* input : ready) {
        if (!std::exchange(input->begun, true))
            m_consumer.begin(input->source());
        bool more = true;
        while (more && !std::holds_alternative<traceRecord_t>(input->item())) {
            give(*input);
            more = advance(*input);
        }
        if (more)
            heads.push_back(headOf(*input));
    }
    std::ranges::make_heap(heads, std::greater());
    while (!heads.empty()) {
        std::ranges::pop_heap(heads, std::greater());
        head_t head = heads.back();
        heads.pop_back();
        bool more = true;
        do { // as long as it stays the earliest
            give(*head.input);
            more = advance(*head.input);
            if (more)
                head = headOf(*head.input);
        } while (more && (heads.empty() || !(head > heads.front())));
        if (!more)
            continue;
        heads.push_back(head);
        std::ranges::push_heap(heads, std::greater());
    }
    return m_status;
}

void traceMerge_t::finish()
{
    m_consumer.finish();
    if (m_read > 0 && m_wanted == 0)
        m_complain(CToolError((m_read == 1 ? "the only record"
                                           : "none of the " + std::to_string(m_read) + " records") +
                                  (m_read == 1 ? " is not" : " is") + " what was asked for",
                              "leave out a filter to see more", exitStatus::good));
}

void traceMerge_t::flush(traceInput_t& input)
{
    input.finish();
    run({&input}, true);
}

int readInOrder(const inputs_t& inputs, traceConsumer_i& consumer)
{
    int status = exitStatus::good;
    const std::vector<source_t> sources = sourcesOf(inputs, status);
    const size_t piece =
        std::clamp(allPieces / std::max<size_t>(sources.size(), 1), smallestPiece, largestPiece);
    std::vector<std::unique_ptr<traceInput_t>> open;
    std::vector<traceInput_t*> all;
    for (const source_t& source : sources) {
        try {
            open.push_back(
                std::make_unique<traceInput_t>(source, inputs.standardInput, piece, false));
            all.push_back(open.back().get());
        } catch (const CToolError& error) {
            inputs.complain(error);
            status = error.ExitStatus();
        }
    }
    traceMerge_t merge(consumer, inputs.filter, inputs.complain);
    status = std::max(status, merge.run(all));
    merge.finish();
    return status;
}

int readEach(const inputs_t& inputs, traceConsumer_i& consumer)
{
    int status = exitStatus::good;
    traceMerge_t merge(consumer, inputs.filter, inputs.complain);
    for (const source_t& source : sourcesOf(inputs, status)) {
        try {
            traceInput_t input(source, inputs.standardInput, largestPiece, false);
            status = std::max(status, merge.run({&input}, true));
        } catch (const CToolError& error) {
            inputs.complain(error);
            status = error.ExitStatus();
        }
    }
    merge.finish();
    return status;
}

traceFollower_t::traceFollower_t(const inputs_t& inputs, traceConsumer_i& consumer)
    : m_inputs(inputs), m_merge(consumer, inputs.filter, inputs.complain)
{
    for (const std::string& name : inputs.names) {
        if (entryKind(pathOf(name)) == entryKind_t::folder)
            m_folders.push_back(name);
        else
            open(name);
    }
}

void traceFollower_t::open(const std::string& name)
{
    source_t source = sourceOf(name, m_open.size() + 1);
    m_open.push_back(std::make_unique<traceInput_t>(std::move(source), m_inputs.standardInput,
                                                    largestPiece, true));
}

// A folder may have no trace yet, and files may go again before they are opened.
void traceFollower_t::openNew()
{
    for (const std::string& folder : m_folders) {
        try {
            for (const std::string& name : tracesIn(folder))
                if (std::ranges::none_of(
                        m_open, [&](const auto& input) { return input->source().name == name; }))
                    open(name);
        } catch (const CToolError&) {
            continue; // it is looked at again
        }
    }
}

void traceFollower_t::poll()
{
    openNew();
    std::vector<traceInput_t*> inputs;
    std::vector<source_t*> sources;
    for (const auto& input : m_open) {
        inputs.push_back(input.get());
        sources.push_back(&input->source());
    }
    if (m_folders.empty() && m_open.size() == 1)
        sources.clear();
    for (source_t* source : sources)
        if (source->label.empty())
            source->label = source->process ? std::to_string(*source->process)
                                            : "#" + std::to_string(source->number);
    for (traceInput_t* input : inputs) {
        if (!input->wasReplaced())
            continue;
        m_merge.flush(*input);
        input->restart();
    }
    m_merge.run(inputs, true);
}

} // namespace vltrace
