#pragma once

#include <optional>
#include <string>

#include <json/json.h>

// parseDocument reads a settings document as leniently as a restore does: comments and text behind it are fine.
// Returns: nothing if it isn't JSON
std::optional<Json::Value> parseDocument(const std::string& text);

// jsonText makes UTF-8 text of a value: indented, or in one line.
std::string jsonText(const Json::Value& value, bool indented);

// cleanUtf8 makes a text from a backup fit for JSON: what is no UTF-8 becomes U+FFFD.
std::string cleanUtf8(const std::string& text);

// printable makes it fit for a terminal: besides, a control character, where escapes hide, becomes \xNN.
std::string printable(const std::string& text);
