#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

// The commands of a program as data: what manual page and completions are made of.

// commandOption_t is one option.
struct commandOption_t {
    std::vector<std::string> names; // with their dashes, the short ones first
    std::string value;              // the word for its value, in capitals; empty for a flag
    bool valueOptional = false;
    std::vector<std::string> choices; // all values that are taken; empty for any
    std::string help;                 // with the default value
};

// commandArgument_t is one positional argument.
struct commandArgument_t {
    std::string name;
    std::string help;
    bool required = false;
    bool repeated = false;
};

// command_t is the program or one of its commands.
struct command_t {
    std::string path; // the names from the program's own down, a blank between two
    std::string help;
    std::string example;                  // empty, or lines
    std::vector<commandOption_t> options; // its own, without hidden ones
    std::vector<commandArgument_t> arguments;
    std::vector<size_t> commands; // below it, as places in the list
    size_t parent = 0;            // the place of the one above; of the program, its own
};

// commandTree lists the program, at the front, and all of its commands, each before those below it.
std::vector<command_t> commandTree(const CLI::App& app);

// optionsAt gives the options that are taken after a command's name: its own, and those above it.
std::vector<commandOption_t> optionsAt(const std::vector<command_t>& tree, size_t place);

// nameOf is the last word of a command's path.
std::string nameOf(const command_t& command);
