#pragma once

#include <windows.h>

#include <json/value.h>

// jsonOfStatus describes a status: its number, its name and the system's text.
Json::Value jsonOfStatus(HRESULT status);

// printResult writes an object to standard output, as JSON or for people.
//
// schema: what says the form of the JSON document, in its member of this name; docs/schemas
//         describes each
void printResult(const char* schema, Json::Value value, bool asJson);

// printDone is printResult for what nobody asked for, of work that is done: nothing with --quiet.
void printDone(const char* schema, const Json::Value& value, bool asJson);
