#pragma once

#include <cstdint>
#include <span>
#include <string>

// The checksum of a file lies beside it, as FILE.sha256, in the form that sha256sum writes and checks: the checksum in
// hexadecimal, two blanks or a blank and an asterisk, the file's name without its folder. Names are UTF-8.

// checksumFileName gives the name of a file's checksum file.
std::string checksumFileName(const std::string& file);

// writeChecksum writes the checksum file, beside its target first.
//
// bytes:   what the file holds
// replace: whether a checksum file that exists is replaced
// Errors:  CToolError
void writeChecksum(const std::string& file, std::span<const uint8_t> bytes, bool replace);

enum class checksum_t {
    absent, // there is no checksum file, or no name that it could belong to: standard input
    equal,
    different,
    unreadable, // it can't be read, or has no checksum of that file
};
// compareChecksum compares what a file holds with its checksum file.
checksum_t compareChecksum(const std::string& file, std::span<const uint8_t> bytes);
