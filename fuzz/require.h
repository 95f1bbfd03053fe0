#pragma once

#include <cstdlib>

// require ends the program when something that must hold doesn't, so that the fuzzer reports it.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}
