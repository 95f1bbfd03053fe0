#pragma once

#include "calls.h"
#include "textout.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <unordered_map>

namespace vltrace {

// otlpTrace_t writes the traces of the OpenTelemetry protocol in its JSON encoding, as a collector
// takes them: each file is a resource, each call a span, each message, note and error an event of
// the span it is in. Spans come when they end. An outermost call begins a trace of its own.
//
// Ids are made of the file's name and the place in it, so that the same file gives the same ones. A
// span with very many events gets them in children named "events", since it is held until it ends.
class otlpTrace_t : public callConsumer_t
{
public:
    // utcOffset: minutes by which the clock of the traces is ahead of UTC
    otlpTrace_t(int utcOffset, std::ostream& out);

    void begin(const source_t& source) override;
    void takeHeader(const source_t& source, const tracecore::traceHeader_t& header) override;
    void end(const source_t& source) override;
    void finish() override;

private:
    struct id_t {
        uint64_t trace; // of the outermost call
        uint64_t span;
        uint64_t parent; // 0: none
    };
    struct span_t {
        id_t id{};
        std::string events;        // JSON, without the brackets around
        size_t count = 0;          // of them
        int64_t from = 0;          // time of the first
        int64_t to = 0;            // and the last of them
        bool failed = false;       // by an error among them
        bool failedBefore = false; // among those that went into children
    };
    void enter(thread_t& thread, call_t& call) override;
    void leave(thread_t& thread, call_t& call, int64_t to, bool finished) override;
    void mark(thread_t& thread, const traceEvent_t& event, int64_t at) override;

    void openResource();
    void writeSpan(const std::string& name, int64_t from, int64_t to, uint32_t thread,
                   const span_t& span, bool finished = true);
    void writeEvents(uint32_t thread, bool loose, span_t& span);
    void appendEvent(span_t& span, const traceEvent_t& event, int64_t at) const;
    uint64_t hash(uint64_t value) const; // with the file's name; never 0
    void addTime(jsonObject_t& object, std::string_view name, int64_t at) const;

    int m_utcOffset;
    textOut_t m_out;
    std::unordered_map<uint64_t, span_t> m_spans; // of the open calls, by their tags
    uint64_t m_seed = 0;
    uint64_t m_tag = 0;
    uint64_t m_loose = 0; // events outside of all functions
    std::string m_resource;
    std::string m_scope;
    bool m_open = false; // the resource is in the output, with its spans
    bool m_firstResource = true;
    bool m_firstSpan = true;
};

} // namespace vltrace
