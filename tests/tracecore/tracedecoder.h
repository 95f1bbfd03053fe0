#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

// A reader of trace files of its own, written from the format. It throws when a file doesn't parse
// to its end.
struct decodedRecord_t {
    uint32_t thread;
    char level;
    std::string text;

    std::string line() const { return level + (" " + text); }
};

struct decodedTrace_t {
    std::vector<std::string> header;
    std::vector<decodedRecord_t> records;

    // The records as "level text".
    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        for (const decodedRecord_t& record : records)
            result.push_back(record.line());
        return result;
    }
};

inline std::string unscrambled(std::string text)
{
    const std::array<uint32_t, 4> k = {0x6B7D1A35, 0xC2E94F08, 0x1F53B8D6, 0x94A0E72C};
    std::array<uint32_t, 2> block = {0x3C5A9D17, 0xE86B40F2};
    const auto signedShift = [](uint32_t v) { return (v >> 5) | (v >> 31 ? 0xF8000000U : 0U); };
    for (size_t i = 0; i < text.size(); ++i) {
        auto& [y, z] = block;
        if (i % 8 == 0) {
            for (uint32_t round = 1; round <= 32; ++round) {
                const uint32_t sum = round * 0x9E3779B9U;
                y += ((z << 4) + k[0]) ^ (z + sum) ^ (signedShift(z) + k[1]);
                z += ((y << 4) + k[2]) ^ (y + sum) ^ (signedShift(y) + k[3]);
            }
        }
        std::array<char, 8> bytes;
        std::memcpy(bytes.data(), block.data(), 8);
        const char scrambled = text[i];
        text[i] = static_cast<char>(scrambled ^ bytes[i % 8]);
        bytes[i % 8] = scrambled;
        std::memcpy(block.data(), bytes.data(), 8);
    }
    return text;
}

inline decodedTrace_t decodeTrace(const std::string& bytes)
{
    decodedTrace_t trace;
    size_t at = 0;
    while (trace.header.empty() || trace.header.back() != ".") {
        const size_t end = bytes.find("\r\n", at);
        if (end == std::string::npos)
            throw std::runtime_error("header without an end");
        trace.header.push_back(bytes.substr(at, end - at));
        at = end + 2;
    }
    while (at < bytes.size()) {
        if (bytes.size() - at < 7)
            throw std::runtime_error("torn record");
        decodedRecord_t record{};
        uint16_t n = 0;
        std::memcpy(&record.thread, &bytes[at], 4);
        record.level = bytes[at + 4];
        std::memcpy(&n, &bytes[at + 5], 2);
        if (bytes.size() - at - 7 < n || !std::strchr("<>UETtN", record.level))
            throw std::runtime_error("torn record");
        record.text = unscrambled(bytes.substr(at + 7, n));
        trace.records.push_back(record);
        at += 7U + n;
    }
    return trace;
}
