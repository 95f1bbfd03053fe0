#pragma once

#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

// require ends the program when something that must hold doesn't, so that the fuzzer reports it.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

// changed gives a good file as an input changes it: a length to cut it to, then pairs of a place and
// a byte to put there. Bare bytes hardly ever get past a file's headers.
inline std::vector<uint8_t> changed(std::vector<uint8_t> file, std::span<const uint8_t> input)
{
    if (input.size() < 2)
        return file;
    file.resize((input[0] | size_t{input[1]} << 8) % (file.size() + 1));
    for (size_t at = 2; at + 3 <= input.size(); at += 3) {
        if (const size_t place = input[at] | size_t{input[at + 1]} << 8; place < file.size())
            file[place] = input[at + 2];
    }
    return file;
}
