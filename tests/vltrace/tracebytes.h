#pragma once

#include "support/tracedecoder.h"

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
        for (unsigned shift : {0U, 8U, 16U, 24U})
            bytes.push_back(static_cast<uint8_t>(thread >> shift));
        bytes.push_back(static_cast<uint8_t>(level));
        const size_t written = plain.size() & 0xFFFF;
        bytes.push_back(static_cast<uint8_t>(written));
        bytes.push_back(static_cast<uint8_t>(written >> 8));
        return text(mixedTraceText(plain.substr(0, written), true));
    }

    std::vector<uint8_t> bytes;
    std::vector<size_t> starts; // of the records
};

// sampleTrace is a small trace with everything in it: three threads, nested calls, entries written
// late with an earlier time, an error, a coloured message, a new writer and midnight.
inline traceBytes_t sampleTrace()
{
    const struct {
        uint32_t thread;
        char level;
        const char* text;
    } records[] = {
        {0x1A4, 't', "07/14/17"},
        {0x1A4, 'T', "15:59:04.100"},
        {0x1A4, '>', "SetStorageData"},
        {0x1A4, 'T', "15:59:04.110"},
        {0x1A4, '>', "RestoreBackup"},
        {0x1A4, 'T', "15:59:04.150"},
        {0x1A4, 'E', "-2147024891 Größe of 日"},
        {0x2B0, 'T', "15:59:04.020"},
        {0x2B0, '>', "Poll"},
        {0x2B0, 'T', "15:59:04.160"},
        {0x2B0, 'U', "'`I04`'NoVLAgent"},
        {0x2B0, '<', ""},
        {0x1A4, '<', ""},
        {0x1A4, 'T', "15:59:04.300"},
        {0x1A4, '<', ""},
        {0x3C8, 'N', "07-14-2017"},
        {0x3C8, 't', "07/15/17"},
        {0x3C8, 'T', "00:00:00.005"},
        {0x3C8, '>', "main"},
        {0x3C8, 'E', "0 note"},
    };
    traceBytes_t trace;
    for (const auto& r : records)
        trace.record(r.thread, r.level, r.text);
    return trace;
}
