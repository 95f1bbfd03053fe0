#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "support/fakesettings.h"

using bytes = std::vector<uint8_t>;

// DER elements, built without the code under test.
bytes tlv(uint8_t tag, const bytes& content);
bytes seq(const std::vector<bytes>& elements);
bytes wide(const std::wstring& text);  // BMPString, the terminator added
bytes narrow(const std::string& text); // OCTET STRING, the terminator added
bytes octets(const std::string& content);
bytes integer(uint8_t value); // below 0x80, or a shortened negative number
bytes filePair(const std::wstring& name, const std::string& content);

// profile_t is one user's surroundings: a personal and a cache folder, the quick link file,
// settings that name them, and the categories. All of it is gone with the object.
class profile_t
{
public:
    profile_t();
    ~profile_t();
    profile_t(const profile_t&) = delete;
    profile_t& operator=(const profile_t&) = delete;

    using fileMap = std::map<std::wstring, std::string>;
    using categoryMap = std::map<std::wstring, std::wstring>;

    void write(const std::wstring& path, const std::string& content) const;
    void clear() const; // the files of both folders, the quick link file and the categories
    fileMap files(const std::wstring& folder) const; // name and content
    void setCategory(const std::wstring& name, const std::wstring& text) const;
    categoryMap categories() const;
    std::wstring setting(const std::wstring& key) const; // empty if there is none

    std::wstring root; // each with a separator at its end
    std::wstring personal;
    std::wstring cache;
    std::wstring quickLinks; // the file
    fakeSettings_t settings;
};
