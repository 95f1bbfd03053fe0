#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include <json/value.h>

// jsonText writes a value as UTF-8 text, indented or in one line, without a line end. What is no
// UTF-8 in it becomes U+FFFD.
std::string jsonText(const Json::Value& value, bool indented);

// base64 of RFC 4648, with padding
std::string base64(std::span<const uint8_t> bytes);

// CJsonDocument writes an object of members and lists as it goes, indented as jsonText does it, so
// that a long one takes no memory. The last line follows when it is destroyed.
class CJsonDocument
{
public:
    explicit CJsonDocument(std::ostream& out);
    ~CJsonDocument();
    CJsonDocument(const CJsonDocument&) = delete;
    CJsonDocument& operator=(const CJsonDocument&) = delete;

    void Member(const char* name, const Json::Value& value);
    void Base64(const char* name, std::span<const uint8_t> bytes);

    // Between BeginList and EndList there are only items.
    void BeginList(const char* name);
    void Item(const Json::Value& value);
    void EndList();

private:
    void Name(const char* name);
    void Value(const Json::Value& value, const char* indentation);

    std::ostream& m_out;
    const char* m_separator = "\n";
    bool m_firstItem = true; // of the list
};

// escapeSteering gives JSON text with the characters of isSteering as \u escapes, so that it can be
// shown on a terminal as well. Its own line ends stay.
//
// json: well-formed, but maybe not UTF-8; what isn't becomes U+FFFD
std::string escapeSteering(std::string_view json);
