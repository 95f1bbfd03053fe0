#pragma once

#include <concepts>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

// CJsonDocument writes an object as it goes, indented by two blanks a level, so that a long one takes no memory. Its
// last line follows when it is destroyed.
//
// Each operation that takes a name adds a member to the object that was begun last; one with a null name adds an item to
// the list that was.
class CJsonDocument
{
public:
    // schema: what says the form of the document, in its first member; docs/schemas describes each
    CJsonDocument(std::ostream& out, const char* schema);
    ~CJsonDocument();
    CJsonDocument(const CJsonDocument&) = delete;
    CJsonDocument& operator=(const CJsonDocument&) = delete;

    // text: UTF-8; what is none becomes U+FFFD
    void Text(const char* name, std::string_view text);
    void Number(const char* name, std::integral auto number)
    {
        Plain(name, std::to_string(number));
    }
    void Flag(const char* name, bool flag);
    void Base64(const char* name, std::span<const uint8_t> bytes);

    void BeginList(const char* name) { Begin(name, '['); }
    void EndList() { End(']'); }
    void BeginObject(const char* name) { Begin(name, '{'); }
    void EndObject() { End('}'); }

private:
    void Plain(const char* name, std::string_view value);
    void Name(const char* name);
    void Begin(const char* name, char bracket);
    void End(char bracket);
    void BeginLine();

    std::ostream& m_out;
    size_t m_depth = 0;
    bool m_empty = true; // of the object or list that was begun last
};
