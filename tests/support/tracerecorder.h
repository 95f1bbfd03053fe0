#pragma once

#include "tracecore/sink.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct recordingSink_t;

struct traceRecord_t {
    char level;
    std::wstring text;
    std::string function;
};

// traceRecorder_t makes the tracer active with a sink that remembers, for the life of the object.
// The configuration is not looked at meanwhile. The first message outside all functions writes an
// entry named "main" first.
struct traceRecorder_t {
    traceRecorder_t();
    ~traceRecorder_t();
    traceRecorder_t(traceRecorder_t&&) = delete;

    // joined gives the E and U records as "|E text" and "|U text" in one text, oldest first, and
    // forgets all records.
    std::wstring joined();

    // all gives every record but the time stamps (T and t), oldest first, and forgets them.
    std::vector<traceRecord_t> all();

private:
    std::shared_ptr<recordingSink_t> m_sink;
    std::shared_ptr<tracecore::outputStorageInterface_i> m_replaced;
    uint32_t m_nextPoll, m_mode, m_kind; // as before
};
