#pragma once

#include <string>
#include <vector>

// What each command line tool does first in its main.

// CToolStreams makes the standard streams carry bytes as they are, for as long as it lives, and a
// console show them as UTF-8.
class CToolStreams
{
public:
    CToolStreams();
    ~CToolStreams();
    CToolStreams(const CToolStreams&) = delete;
    CToolStreams& operator=(const CToolStreams&) = delete;

private:
    unsigned m_codePage = 0; // the console's former one; it is the console's, not the process's
};

// toolArguments gives the arguments without the program's name, UTF-8, on Windows from the wide
// command line: the narrow one is in the active code page and loses characters.
std::vector<std::string> toolArguments(int argc, char** argv);
