#pragma once

#include <string>

#include <json/value.h>

// plainText shows a value for people: one line per member, what matters first, nested ones
// indented. A member that is named like another with "Meaning" added follows that one in brackets.
std::string plainText(const Json::Value& value);
