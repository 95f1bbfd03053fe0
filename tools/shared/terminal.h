#pragma once

#include <ostream>
#include <string>

// What only a terminal gets, and what the user doesn't want to see.

// isTerminal is true for std::cout and std::cerr while they go to a terminal.
bool isTerminal(const std::ostream& stream) noexcept;

enum class colour_t { red = 31, green = 32, yellow = 33 };

// coloured is the text in a colour, or as it is, by what the user wants.
std::string coloured(const std::ostream& stream, colour_t colour, const std::string& text);

enum class colouring_t {
    automatic, // if the stream goes to a terminal that shows colours, unless NO_COLOR is set
    always,
    never,
};
void setColouring(colouring_t colouring) noexcept;

// isQuiet is true after --quiet: then only what was asked for is printed, and failures.
bool isQuiet() noexcept;
void setQuiet(bool quiet) noexcept;
