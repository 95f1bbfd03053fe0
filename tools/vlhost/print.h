#pragma once

#include "files.h"

#include <windows.h>
#include <oaidl.h>

#include <chrono>
#include <string>

#include <json/value.h>

// errorText is the system's own text for an error of a platform call, without its line end; a
// number if there is none. UTF-8.
std::string errorText(DWORD error);

// statusText is "0x80070005 ERROR_ACCESS_DENIED: Access denied." with as much as is known.
std::string statusText(HRESULT status);

// jsonOfStatus and jsonOfVariant describe a status and a whole VARIANT, arrays and nested ones
// included. Byte arrays are hexadecimal text; objects are shown by what they are, not by their
// address.
Json::Value jsonOfStatus(HRESULT status);
Json::Value jsonOfVariant(const VARIANT& value);

// hexText is bytes in lower-case hexadecimal.
std::string hexText(const bytes_t& bytes);

// plainText shows a value for people: one line per member, what matters first, nested ones
// indented. A member that is named like another with "Meaning" added follows that one in brackets.
std::string plainText(const Json::Value& value);

// textOfPlan shows a plan in JSON, as restore and its undoing make them, for people: one line per
// file.
std::string textOfPlan(const Json::Value& plan);

// printResult writes value to standard output, as JSON or for people.
void printResult(const Json::Value& value, bool asJson);

// CProgress shows on a terminal how much of a piece of work is done; elsewhere it is silent.
class CProgress
{
public:
    CProgress(const char* what, size_t total);
    ~CProgress(); // removes the line
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    void Step();

private:
    const char* m_what;
    size_t m_total;
    size_t m_done = 0;
    bool m_terminal;
    std::chrono::steady_clock::time_point m_shown{};
};
