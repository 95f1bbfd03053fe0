#pragma once

#include "neighbours/settingsprovider.h"

// VloSet.dll, the settings provider: the keys of settingstable.cpp, kept per user in the registry
// (settingsstore.h). A value of any other type than text counts as absent, and an absent value
// reads as the key's default.
//
// All four take one SettingsRequest and raise nothing.
// Returns: 0x80070057 for no request, a size other than 20, a null key, or nowhere to put
//          the answer; 0x80070002 for a key that isn't one, 0x8007000E out of memory
extern "C" {

// api_settings_query answers with the value, references in it expanded.
HRESULT api_settings_query(SettingsRequest* request);

// api_settings_set stores a value for the user, for any of the keys; a null value is the empty
// text.
//
// Returns: also the registry's own errors
HRESULT api_settings_set(SettingsRequest* request);

// api_settings_env answers like a query with the value as it is kept: references such as %APPDATA%
// stay, so that it holds for another user or machine too.
HRESULT api_settings_env(SettingsRequest* request);

// api_settings_diag answers with a line for people: the key, its value and where it comes from. The
// empty key gives one line for each key, each with a line feed.
HRESULT api_settings_diag(SettingsRequest* request);

} // extern "C"
