#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tracecore {

// outputStorageInterface_i is a place where records go. It is called under the writers' mutex.
class outputStorageInterface_i
{
public:
    virtual ~outputStorageInterface_i() = default;

    // level:    the record's level byte, one of traceLevels
    // text:     UTF-16
    // function: the innermost open function of the writing thread, UTF-8
    virtual void write(char level, const std::wstring& text, const std::string& function) = 0;
};

// The kinds of sinks, the values of the tracer's mode and of sinkKind. Each has a row in sink.cpp.
enum : uint32_t {
    sinkNone = 0,
    sinkNowhere = 1,
    sinkFileAppend = 2,
    sinkFileNew = 3,
    sinkConsole = 4,
    sinkIDE = 5,
};

// createSink makes the sink of a kind, sinkNowhere to sinkIDE; null for any other. The file sinks
// get their path from the tracer.
std::unique_ptr<outputStorageInterface_i> createSink(uint32_t kind);

// sinkOfSetting gives the kind that a value of the setting TraceToFile stands for, sinkNowhere for
// a value without one.
uint32_t sinkOfSetting(uint32_t setting) noexcept;

} // namespace tracecore
