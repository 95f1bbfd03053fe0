#pragma once

#include <windows.h>

#include <json/value.h>

// jsonOfStatus describes a status: its number, its name and the system's text.
Json::Value jsonOfStatus(HRESULT status);

// printResult writes value to standard output, as JSON or for people.
void printResult(const Json::Value& value, bool asJson);

// printDone is printResult for what nobody asked for, of work that is done: nothing with --quiet.
void printDone(const Json::Value& value, bool asJson);
