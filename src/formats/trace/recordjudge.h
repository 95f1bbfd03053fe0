#pragma once

#include "formats/trace/levels.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// What of a trace file looks like a record. Portable: no platform header.
namespace tracecore {

// look_t is the judgement of bytes by themselves.
enum class look_t {
    no,   // no record
    cut,  // a record that is cut by the end of the file
    more, // can't be judged without more bytes
    weak, // a record, or chance
    sure, // a record
};

// recordJudge_t judges whether a record begins at the front of bytes.
class recordJudge_t
{
public:
    // bytes:     of the file, from the place in question to the last one known
    // ended:     the file ends with them
    // textLimit: at most so many bytes of the text are looked at
    look_t look(std::span<const uint8_t> bytes, bool ended, size_t textLimit);

    // What the last look saw of the text, unscrambled, and whether all of it is UTF-8.
    std::string& text() noexcept { return m_text; }
    bool isValid() const noexcept { return m_valid; }

private:
    bool isSaneText(std::span<const uint8_t> scrambled, const levelInfo_t& level);
    bool isSaneUtf8();

    std::string m_text;
    bool m_valid = false;
};

// textLength reads the length of the text from a record's header, which bytes have to hold.
size_t textLength(std::span<const uint8_t> record) noexcept;

// mayBeFramed is true if the header's level is known, and the text's length is one of that level.
bool mayBeFramed(std::span<const uint8_t> record) noexcept;

// unscramble puts the text unscrambled into plain, which holds as much of it as from says, a
// multiple of 8.
void unscramble(std::span<const uint8_t> scrambled, std::string& plain, size_t from = 0);

// validUtf8 gives the text with every byte that belongs to no UTF-8 character replaced by U+FFFD.
std::string validUtf8(std::string_view bytes);

} // namespace tracecore
