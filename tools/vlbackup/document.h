#pragma once

#include <optional>
#include <string>

#include <json/json.h>

// parseDocument reads a settings document as leniently as a restore does: it may have comments, and
// text behind it.
// Returns: nothing if it isn't JSON
std::optional<Json::Value> parseDocument(const std::string& text);

// jsonText makes UTF-8 text of a value: indented, or in one line.
std::string jsonText(const Json::Value& value, bool indented);

// cleanUtf8 makes a text from a backup fit for JSON: what is no UTF-8 becomes U+FFFD.
std::string cleanUtf8(const std::string& text);

// printable makes it fit for a terminal: a control character, where escapes hide, becomes \xNN too.
std::string printable(const std::string& text);
