#pragma once

#include <array>
#include <string>
#include <vector>

// What each command line tool does first in its main.

// CToolStreams makes the standard streams carry bytes as they are, for as long as it lives, and a
// console show them as UTF-8 and in colours.
class CToolStreams
{
public:
    CToolStreams();
    ~CToolStreams();
    CToolStreams(const CToolStreams&) = delete;
    CToolStreams& operator=(const CToolStreams&) = delete;

private:
    // What the console had before: they are the console's, not the process's.
    unsigned m_codePage = 0;
    std::array<unsigned long, 2> m_modes{}; // of its output and error streams; 0 for none
};

// toolArguments gives the arguments without the program's name, UTF-8, on Windows from the wide
// command line: the narrow one is in the active code page and loses characters.
std::vector<std::string> toolArguments(int argc, char** argv);
