#include "runtime/runtime.h"

#include <ios>

// Every object that includes <iostream> calls these at load, to make the eight standard streams. No
// DLL of ours uses those: it would make a locale, with hundreds of conversions, for nothing. Other
// streams make their locale themselves when they are first used.
std::ios_base::Init::Init() = default;
std::ios_base::Init::~Init()
{
    // nothing to flush
}
