#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// hexText is bytes in lower-case hexadecimal, bytesOfHex the reverse.
//
// Errors: std::invalid_argument from bytesOfHex for what is none
std::string hexText(std::span<const uint8_t> bytes);
std::vector<uint8_t> bytesOfHex(std::string_view hex);
