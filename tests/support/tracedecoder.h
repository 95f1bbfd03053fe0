#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
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
        for (const decodedRecord_t& record : records)
            result.push_back(record.level + (" " + record.text));
        return result;
    }
};

// The block cipher behind the texts, and the block that each text starts with.
using traceBlock_t = std::array<uint32_t, 2>;
inline constexpr traceBlock_t firstTraceBlock = {0x3C5A9D17, 0xE86B40F2};

inline traceBlock_t encipherTraceBlock(traceBlock_t block)
{
    constexpr uint32_t k[] = {0x6B7D1A35, 0xC2E94F08, 0x1F53B8D6, 0x94A0E72C};
    // A shift that keeps the sign, told without signed numbers.
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
    traceBlock_t block = firstTraceBlock;
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 8 == 0)
            block = encipherTraceBlock(block);
        uint32_t& word = block[i / 4 % 2];
        const unsigned shift = 8 * (i % 4);
        const auto in = static_cast<uint8_t>(text[i]);
        const auto out = static_cast<uint8_t>(in ^ (word >> shift));
        word = (word & ~(0xFFU << shift)) | uint32_t{scramble ? out : in} << shift;
        text[i] = static_cast<char>(out);
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
        record.text = mixedTraceText(bytes.substr(at + 7, n), false);
        trace.records.push_back(record);
        at += 7U + n;
    }
    return trace;
}

inline std::string fileBytes(const std::filesystem::path& path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}
