#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

// CSha256 takes bytes in pieces and gives their SHA-256 (FIPS 180-4). The platform's library does the work, so there is
// one file for each: sha256windows.cpp and sha256posix.cpp.
//
// Errors: CToolError, of every operation, if the system refuses the algorithm
class CSha256
{
public:
    CSha256();
    ~CSha256();
    CSha256(const CSha256&) = delete;
    CSha256& operator=(const CSha256&) = delete;

    void Add(std::span<const uint8_t> bytes);

    // Text gives the checksum in lower-case hexadecimal. Nothing can be added afterwards.
    std::string Text();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// sha256Text gives the checksum of bytes that are all there.
inline std::string sha256Text(std::span<const uint8_t> bytes)
{
    CSha256 sum;
    sum.Add(bytes);
    return sum.Text();
}
