#pragma once

#include <memory>
#include <string>
#include <string_view>

struct pcre2_real_code_8;
struct pcre2_real_match_data_8;

namespace vltrace {

// pattern_t is a regular expression in the syntax of Perl, on UTF-8.
class pattern_t
{
public:
    // Errors: CToolError with the status wrongUsage for a text that is no expression
    pattern_t(const std::string& text, bool ignoreCase);

    // matches is true if the expression is found in the text, which is UTF-8.
    // Errors: CToolError if that takes too many steps
    bool matches(std::string_view text) const;

private:
    std::string m_text;
    std::shared_ptr<const pcre2_real_code_8> m_code;
    std::shared_ptr<pcre2_real_match_data_8> m_match;
};

} // namespace vltrace
