#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// CMessageTemplates takes out of the plug-in's messages what the plug-in doesn't bring along itself.
// What stays of a message is in the bytes of the DLL, or is a number in a place where the DLL has
// one; all else, which is to say all that comes from a user's data, is replaced by "<...>".
class CMessageTemplates
{
public:
    // module: the bytes of the DLL, whose texts are taken for the templates
    explicit CMessageTemplates(std::span<const uint8_t> module);

    // Redact gives a message by the template that says most of it. One without a template is "<...>".
    std::string Redact(const std::string& message) const;

private:
    // template_t is a text with places for values.
    struct template_t {
        std::vector<std::string> parts; // what stands before, between and after the places
        std::vector<bool> numbers;      // of each place, whether a number goes there
        size_t size = 0;                // of all parts
    };

    void Add(std::string_view text);
    static bool Fill(const template_t& candidate, std::string_view message, std::string& filled);

    std::multimap<std::string, template_t> m_templates; // by what they begin with, up to keySize
};
