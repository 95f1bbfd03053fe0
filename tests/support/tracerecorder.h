#pragma once

#include <string>
#include <vector>

// traceRecorder_t makes the tracer active with a sink that remembers, for the life of the object.
struct traceRecord_t {
    char level;
    std::wstring text;
    std::string function;
};

class traceRecorder_t
{
public:
    traceRecorder_t();
    ~traceRecorder_t();
    traceRecorder_t(const traceRecorder_t&) = delete;
    traceRecorder_t& operator=(const traceRecorder_t&) = delete;

    // messages gives the E and U records as "E text" and "U text", oldest first, and forgets all records.
    std::vector<std::wstring> messages();

    // all gives every record but the time stamps (T and t), oldest first, and forgets them.
    std::vector<traceRecord_t> all();
};
