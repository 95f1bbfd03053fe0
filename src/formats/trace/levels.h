#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

// The levels of trace records. A new one is an enumerator and a row here. Portable: no platform
// header.
namespace tracecore {

// traceLevel_t is the level byte of a record.
enum traceLevel_t : char {
    levelEntry = '>',
    levelExit = '<',
    levelMessage = 'U',
    levelError = 'E',
    levelDebug = 'D',
    levelWriter = 'N',
    levelTime = 'T',
    levelDate = 't',
};

// levelUse_t is what a record is there for. A status is a message that begins with a number.
enum class levelUse_t { call, message, status, writer, clock };

struct levelInfo_t {
    traceLevel_t letter;
    levelUse_t use;
    std::optional<std::string_view> shape; // of the text, 0 for any digit; none: any text
};

inline constexpr levelInfo_t traceLevels[] = {
    {levelEntry, levelUse_t::call, std::nullopt}, // a function was entered: its name
    {levelExit, levelUse_t::call, ""},            // the last one entered is left
    {levelMessage, levelUse_t::message, std::nullopt},
    {levelError, levelUse_t::status, std::nullopt}, // an error, or with the status 0 a note
    {levelDebug, levelUse_t::message, std::nullopt},
    {levelWriter, levelUse_t::writer, "00-00-0000"}, // another process goes on with the file
    {levelTime, levelUse_t::clock, "00:00:00.000"},  // of the records that follow
    {levelDate, levelUse_t::clock, "00/00/00"},      // likewise
};

// levelOf gives the row of a level byte, null if it is none.
constexpr const levelInfo_t* levelOf(char letter) noexcept
{
    const auto* const row = std::ranges::find(traceLevels, letter, &levelInfo_t::letter);
    return row == std::end(traceLevels) ? nullptr : row;
}

// isOfUse is true for the level of a record that is there for that.
constexpr bool isOfUse(char letter, levelUse_t use) noexcept
{
    const levelInfo_t* const level = levelOf(letter);
    return level && level->use == use;
}

// levelLetters gives all level bytes.
inline std::string levelLetters()
{
    std::string letters;
    for (const levelInfo_t& level : traceLevels)
        letters.push_back(level.letter);
    return letters;
}

// hasShape compares text with a shape, in which 0 stands for any digit.
constexpr bool hasShape(std::string_view text, std::string_view shape) noexcept
{
    return std::ranges::equal(text, shape, [](char c, char wanted) {
        return wanted == '0' ? c >= '0' && c <= '9' : c == wanted;
    });
}

} // namespace tracecore
