#pragma once

#include <string>
#include <string_view>

#include <json/value.h>

// jsonText writes a value as UTF-8 text, indented or in one line, without a line end. What is no
// UTF-8 in it becomes U+FFFD.
std::string jsonText(const Json::Value& value, bool indented);

// escapeSteering gives JSON text with the characters of isSteering as \u escapes, so that it can be
// shown on a terminal as well. Its own line ends stay.
//
// json: well-formed, but maybe not UTF-8; what isn't becomes U+FFFD
std::string escapeSteering(std::string_view json);
