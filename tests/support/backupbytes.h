#pragma once

#include <cstdint>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#include <oaidl.h>
#endif

using bytes = std::vector<uint8_t>;

// DER elements; no character is above U+FFFF. integer takes a number below 0x80, or the one octet
// left of a negative one.
bytes tlv(uint8_t tag, const bytes& content);
bytes seq(const std::vector<bytes>& elements);
bytes wide(const std::wstring& text);
bytes octets(const std::string& content);
bytes narrow(const std::string& text);
bytes integer(uint8_t value);
bytes filePair(const std::wstring& name, const std::string& content);

#ifdef _WIN32
// byteArray makes an array of type 0x2011 in an empty variant; bytesOf takes one apart.
void byteArray(VARIANT& variant, const bytes& content, LONG lower = 0);
bytes bytesOf(const VARIANT& variant);
#endif
