#pragma once

#include <string>

#include <windows.h>
#include <oaidl.h>
#include <json/value.h>

#include "files.h"

// errorText is the system's own text for an error of a platform call, without its line end; a
// number if there is none. UTF-8.
std::string errorText(DWORD error);

// statusText is "0x80070005 ERROR_ACCESS_DENIED: Access denied." with as much as is known.
std::string statusText(HRESULT status);

// jsonOfStatus and jsonOfVariant tell a status and a whole VARIANT, arrays and nested ones
// included. Byte arrays are hexadecimal text; objects are told by what they are, not by their
// address.
Json::Value jsonOfStatus(HRESULT status);
Json::Value jsonOfVariant(const VARIANT& value);

// hexText is bytes in lower-case hexadecimal.
std::string hexText(const bytes_t& bytes);

// plainText shows a value for people: one line a member, what matters first, nested ones indented.
// A member named as another with "Meaning" behind stands in brackets behind that one.
std::string plainText(const Json::Value& value);

// printResult writes value to standard output, as JSON or for people.
void printResult(const Json::Value& value, bool asJson);
