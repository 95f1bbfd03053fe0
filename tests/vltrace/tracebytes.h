#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// traceBytes_t makes the bytes of trace files, with a cipher of its own: it shares no code with
// what it tests.
class traceBytes_t
{
public:
    static constexpr const char* header =
        "trace3\r\nCompiled: Jul 14 2017 15:59:04\r\nTrace Ver: 3.0.2\r\n"
        "07/14/2017 15:59:04.123\r\n.\r\n";

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
        return text(scrambled(plain.substr(0, written)));
    }

    static std::array<uint32_t, 2> encipher(std::array<uint32_t, 2> v)
    {
        const uint32_t k[] = {0x6B7D1A35, 0xC2E94F08, 0x1F53B8D6, 0x94A0E72C};
        // A shift that keeps the sign, told without signed numbers.
        const auto shifted = [](uint32_t word) {
            return word >> 5 | (word & 0x80000000 ? 0xF8000000 : 0);
        };
        for (uint32_t i = 1; i <= 32; ++i) {
            const uint32_t sum = i * 0x9E3779B9;
            v[0] += (v[1] * 16 + k[0]) ^ (v[1] + sum) ^ (shifted(v[1]) + k[1]);
            v[1] += (v[0] * 16 + k[2]) ^ (v[0] + sum) ^ (shifted(v[0]) + k[3]);
        }
        return v;
    }

    static std::string scrambled(std::string plain)
    {
        std::array<uint32_t, 2> block = {0x3C5A9D17, 0xE86B40F2};
        for (size_t at = 0; at < plain.size(); at += 8) {
            block = encipher(block);
            for (size_t i = 0; i < 8 && at + i < plain.size(); ++i) {
                uint32_t& word = block[i / 4];
                const unsigned shift = 8 * (i % 4);
                const auto out =
                    static_cast<uint8_t>(static_cast<uint8_t>(plain[at + i]) ^ (word >> shift));
                word = (word & ~(0xFFU << shift)) | static_cast<uint32_t>(out) << shift;
                plain[at + i] = static_cast<char>(out);
            }
        }
        return plain;
    }

    std::vector<uint8_t> bytes;
    std::vector<size_t> starts; // of the records
};

// sampleTrace is a small trace with everything in it: two threads, nested calls, entries written
// late with an earlier time, an error, a coloured message, a new writer and midnight.
inline traceBytes_t sampleTrace()
{
    traceBytes_t trace;
    trace.text(traceBytes_t::header);
    trace.record(0x1A4, 't', "07/14/17").record(0x1A4, 'T', "15:59:04.100");
    trace.record(0x1A4, '>', "CVLKTPages::SetStorageData").record(0x1A4, 'T', "15:59:04.110");
    trace.record(0x1A4, '>', "RestoreBackup").record(0x1A4, 'T', "15:59:04.150");
    trace.record(0x1A4, 'E', "-2147024891 Größe of \xE6\x97\xA5");
    trace.record(0x2B0, 'T', "15:59:04.020")
        .record(0x2B0, '>', "Poll")
        .record(0x2B0, 'T', "15:59:04.160");
    trace.record(0x2B0, 'U', "'`I04`'NoVLAgent").record(0x2B0, '<');
    trace.record(0x1A4, '<').record(0x1A4, 'T', "15:59:04.300").record(0x1A4, '<');
    trace.record(0x3C8, 'N', "07-14-2017")
        .record(0x3C8, 't', "07/15/17")
        .record(0x3C8, 'T', "00:00:00.005");
    trace.record(0x3C8, '>', "main").record(0x3C8, 'E', "0 note");
    return trace;
}
