#pragma once

#include "support/files.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// A reader of trace files of its own, written from the format: it shares no code with what it
// tests. It throws when a file doesn't parse to its end.
struct decodedRecord_t {
    uint32_t thread;
    char level;
    std::string text;
};

struct decodedTrace_t {
    std::vector<std::string> header;
    std::vector<decodedRecord_t> records;

    // The records as "level text".
    std::vector<std::string> lines() const
    {
        std::vector<std::string> result;
        for (const auto& [thread, level, text] : records)
            result.push_back(level + (" " + text));
        return result;
    }
};

// The block cipher of the texts.
using traceBlock_t = std::array<uint32_t, 2>;

inline traceBlock_t encipherTraceBlock(traceBlock_t block)
{
    constexpr uint32_t k[] = {0x6B7D1A35, 0xC2E94F08, 0x1F53B8D6, 0x94A0E72C};
    // A shift that keeps the sign, written without signed numbers.
    const auto shifted = [](uint32_t v) { return (v >> 5) | (v >> 31 ? 0xF8000000U : 0U); };
    auto& [y, z] = block;
    for (uint32_t round = 1; round <= 32; ++round) {
        const uint32_t sum = round * 0x9E3779B9U;
        y += (z * 16 + k[0]) ^ (z + sum) ^ (shifted(z) + k[1]);
        z += (y * 16 + k[2]) ^ (y + sum) ^ (shifted(y) + k[3]);
    }
    return block;
}

// Scrambles a text, or unscrambles it: the scrambled bytes feed the next block in both directions.
inline std::string mixedTraceText(std::string text, bool scramble)
{
    traceBlock_t block = {0x3C5A9D17, 0xE86B40F2};
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 8 == 0)
            block = encipherTraceBlock(block);
        uint32_t& word = block[i / 4 % 2];
        const unsigned shift = 8 * (i % 4);
        const uint32_t in = static_cast<uint8_t>(text[i]), out = in ^ (word >> shift & 0xFF);
        word = (word & ~(0xFFU << shift)) | (scramble ? out : in) << shift;
        text[i] = static_cast<char>(out);
    }
    return text;
}

inline decodedTrace_t decodeTrace(const std::string& file)
{
    decodedTrace_t trace;
    size_t at = 0;
    const auto upTo = [&](size_t end) {
        if (end > file.size())
            throw std::runtime_error("torn trace");
        const size_t from = std::exchange(at, end);
        return file.substr(from, end - from);
    };
    while (trace.header.empty() || trace.header.back() != ".") {
        trace.header.push_back(upTo(file.find("\r\n", at)));
        at += 2;
    }
    while (at < file.size()) {
        auto& record = trace.records.emplace_back();
        uint16_t n = 0;
        std::memcpy(&record.thread, upTo(at + 4).data(), 4);
        record.level = upTo(at + 1)[0];
        std::memcpy(&n, upTo(at + 2).data(), 2);
        record.text = mixedTraceText(upTo(at + n), false);
    }
    return trace;
}
