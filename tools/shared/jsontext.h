#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <json/value.h>

// jsonText writes a value as UTF-8 text, indented or in one line, without a line end. What is no
// UTF-8 in it becomes U+FFFD.
std::string jsonText(const Json::Value& value, bool indented);

// base64 of RFC 4648, with padding
std::string base64(std::span<const uint8_t> bytes);

// bytesOfBase64 is the reverse. Nothing for a text that is none.
std::optional<std::vector<uint8_t>> bytesOfBase64(std::string_view text);
