#pragma once

#include <string>

#include <windows.h>
#include <oaidl.h>
#include <json/value.h>

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

// plainText shows a value for people: one line a member, nested ones indented.
std::string plainText(const Json::Value& value);

// printResult writes value to standard output, as JSON or for people.
void printResult(const Json::Value& value, bool asJson);
