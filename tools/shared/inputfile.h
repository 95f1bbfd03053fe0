#pragma once

#include "shared/mappedfile.h"

#include <cstdint>
#include <fstream>
#include <istream>
#include <span>
#include <string>
#include <vector>

// Names of inputs are UTF-8; "-" is standard input, which then is the stream that is given. Every
// operation raises a CToolError whose line says which of these it is: missing, a folder, not
// readable for this user, readable only in part.

// openInput opens a file; "-" is none.
std::ifstream openInput(const std::string& name);

// CInput is a whole input: the view of a file, or what was read from a pipe.
class CInput
{
public:
    CInput(const std::string& name, std::istream& standardInput);

    std::span<const uint8_t> Bytes() const noexcept
    {
        return m_read.empty() ? m_file.Bytes() : m_read;
    }

private:
    CMappedFile m_file;
    std::vector<uint8_t> m_read;
};

// readInput gives a copy of a whole input.
std::vector<uint8_t> readInput(const std::string& name, std::istream& standardInput);

// checkRead raises if the last read of the stream failed for another reason than its end.
void checkRead(const std::string& name, const std::istream& stream);

// shownInput is the name for a message: "standard input" for "-".
std::string shownInput(const std::string& name);

// describeBytes says what the bytes of an unsuitable file are, as in "a ZIP archive", "text",
// "nothing but zeros" or "bytes that begin 4D 5A 90 00".
std::string describeBytes(std::span<const uint8_t> bytes);
