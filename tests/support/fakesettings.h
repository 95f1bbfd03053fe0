#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

// fakeSettings_t stands in for the settings provider's library, in this process, for the life of
// the object. One at a time.
struct fakeSettings_t {
    fakeSettings_t();
    ~fakeSettings_t();
    fakeSettings_t(fakeSettings_t&&) = delete;

    std::map<std::wstring, std::wstring> values; // an absent key answers 0x80070002; a set adds it
    std::vector<std::wstring> queried;           // the keys asked for, in order
};
