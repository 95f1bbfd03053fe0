#pragma once

#include <string>
#include <string_view>

// JSON text that can be shown on a terminal as well: characters of isSteering are \u escapes. What
// is no UTF-8 becomes U+FFFD.

// appendJsonString appends text as a JSON string, in quotes.
//
// forPage: escape what could end a script of a page, too
void appendJsonString(std::string& out, std::string_view text, bool forPage = false);

// escapeSteering gives JSON text, well-formed but maybe not UTF-8, with these escapes. Its own line
// ends stay.
std::string escapeSteering(std::string_view json);
