#pragma once

#include "support/tracedecoder.h"

#include <cstdint>

// traceBytes_t makes the bytes of trace files. It shares no code with what it tests.
class traceBytes_t
{
public:
    static constexpr const char* header =
        "trace3\r\nCompiled: Jul 14 2017 15:59:04\r\nTrace Ver: 3.0.2\r\n"
        "07/14/2017 15:59:04.123\r\n.\r\n";

    explicit traceBytes_t(const std::string& plain = header) { text(plain); }

    traceBytes_t& text(const std::string& plain)
    {
        bytes.insert(bytes.end(), plain.begin(), plain.end());
        return *this;
    }

    traceBytes_t& record(uint32_t thread, char level, const std::string& plain = {})
    {
        starts.push_back(bytes.size());
        const uint64_t head =
            thread | uint64_t{static_cast<uint8_t>(level)} << 32 | uint64_t{plain.size()} << 40;
        for (unsigned shift = 0; shift < 56; shift += 8)
            bytes.push_back(static_cast<uint8_t>(head >> shift));
        return text(mixedTraceText(plain.substr(0, plain.size() & 0xFFFF), true));
    }

    // Adds records of one thread, each given as its level and text in one.
    traceBytes_t& records(uint32_t thread, std::initializer_list<std::string> lines)
    {
        for (const std::string& line : lines)
            record(thread, line[0], line.substr(1));
        return *this;
    }

    std::vector<uint8_t> bytes;
    std::vector<size_t> starts; // of the records
};

// sampleTrace is a small trace with everything in it: three threads, nested calls, entries written
// late with an earlier time, an error, a coloured message, a new writer and midnight.
inline traceBytes_t sampleTrace()
{
    return traceBytes_t()
        .records(0x1A4, {"t07/14/17", "T15:59:04.100", ">SetStorageData", "T15:59:04.110",
                         ">RestoreBackup", "T15:59:04.150", "E-2147024891 Größe of 日"})
        .records(0x2B0, {"T15:59:04.020", ">Poll", "T15:59:04.160", "U'`I04`'NoVLAgent", "<"})
        .records(0x1A4, {"<", "T15:59:04.300", "<"})
        .records(0x3C8, {"N07-14-2017", "t07/15/17", "T00:00:00.005", ">main", "E0 note"});
}
