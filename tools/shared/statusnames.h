#pragma once

#include <cstdint>
#include <string>

namespace tools {

// statusInfo_t is what a status number means. name and text are empty for a number that isn't
// known.
struct statusInfo_t {
    std::string hex;  // as in 0x80070005
    std::string name; // as in ERROR_ACCESS_DENIED
    std::string text; // a short clause
};

// describeStatus looks a status up. One of the form 0x8007xxxx, or a positive number up to 65535,
// is the platform's error xxxx.
statusInfo_t describeStatus(int32_t status);

} // namespace tools
