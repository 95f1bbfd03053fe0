#pragma once

#include <cstdint>
#include <vector>

// takeLiveBackup takes a backup of the profile as it is now. What such a backup holds is the plug-in's to say, so vlhost,
// which loads it and has to be beside this program, is run for it; its messages go to standard error.
// livebackupwindows.cpp and livebackupposix.cpp, where there is no profile.
//
// Errors: CToolError
std::vector<uint8_t> takeLiveBackup();
