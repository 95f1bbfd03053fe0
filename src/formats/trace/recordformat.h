#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The trace file's record: thread id (4 bytes, little-endian), level (1), n (2, little-endian),
// then n bytes of UTF-8 text, scrambled. Portable: no platform header.
namespace tracecore {

inline constexpr size_t recordHeaderSize = 7;
inline constexpr char traceFormatVersion[] = "3.0.2"; // as the file's header has it

// scrambleText scrambles the text of one record in place; unscrambleText is its opposite. The
// stream restarts with each call, so equal texts have equal scrambled bytes. scrambleText is in
// recordformat.cpp; unscrambleText, which the tracer doesn't need, in unscramble.cpp.
void scrambleText(uint8_t* buffer, size_t length) noexcept;
void unscrambleText(uint8_t* buffer, size_t length) noexcept;

// The same out of place, and for a text that is plain already up to from, a multiple of 8: a block
// needs only the scrambled one before it. plain may be scrambled itself if from is 0.
void unscrambleText(const uint8_t* scrambled, size_t length, uint8_t* plain, size_t from) noexcept;

} // namespace tracecore
