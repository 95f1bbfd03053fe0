#pragma once

#include <string>
#include <string_view>

// jsonString gives text as a JSON string, in quotes. Characters of isSteering are \u escapes, so that it can be shown on
// a terminal as well; what is no UTF-8 becomes U+FFFD.
std::string jsonString(std::string_view text);
