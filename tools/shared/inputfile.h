#pragma once

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

// readInput reads a whole input.
std::vector<uint8_t> readInput(const std::string& name, std::istream& standardInput);

// checkRead raises if the last read of the stream failed for another reason than its end.
void checkRead(const std::string& name, const std::istream& stream);

// shownInput is the name for a message: "standard input" for "-".
std::string shownInput(const std::string& name);

// describeBytes says what the bytes of an unsuitable file are, as in "a ZIP archive", "text",
// "nothing but zeros" or "bytes that begin 4D 5A 90 00".
std::string describeBytes(std::span<const uint8_t> bytes);
