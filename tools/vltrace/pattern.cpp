#include "pattern.h"

#include "shared/toolerror.h"

#include <pcre2.h>

#include <array>

namespace vltrace {

namespace {

constexpr uint32_t stepLimit = 1'000'000; // a second, about: a trace has many texts

std::string reasonText(int error)
{
    std::array<PCRE2_UCHAR, 128> reason{};
    const int size = pcre2_get_error_message(error, reason.data(), reason.size());
    return {reason.begin(), reason.begin() + (size > 0 ? size : 0)};
}

// The limits of all matches.
pcre2_match_context* limits()
{
    static const std::unique_ptr<pcre2_match_context, decltype(&pcre2_match_context_free)> context(
        pcre2_match_context_create(nullptr), &pcre2_match_context_free);
    if (context)
        pcre2_set_match_limit(context.get(), stepLimit);
    return context.get();
}

} // namespace

pattern_t::pattern_t(const std::string& text, bool ignoreCase) : m_text(text)
{
    int error = 0;
    PCRE2_SIZE at = 0;
    pcre2_code* const code = pcre2_compile(
        reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(),
        PCRE2_UTF | PCRE2_UCP | (ignoreCase ? PCRE2_CASELESS : 0U), &error, &at, nullptr);
    if (!code)
        throw CToolError("\"" + text + "\" is no regular expression: " + reasonText(error) +
                             " at character " + std::to_string(at + 1),
                         "--text looks for a text as it is", exitStatus::wrongUsage);
    m_code.reset(code, &pcre2_code_free);
    m_match.reset(pcre2_match_data_create(1, nullptr), &pcre2_match_data_free);
    if (!m_match)
        throw std::bad_alloc();
}

bool pattern_t::matches(std::string_view text) const
{
    const int found = pcre2_match(m_code.get(), reinterpret_cast<PCRE2_SPTR>(text.data()),
                                  text.size(), 0, PCRE2_NO_UTF_CHECK, m_match.get(), limits());
    if (found >= 0 || found == PCRE2_ERROR_NOMATCH)
        return found >= 0;
    throw CToolError("\"" + m_text + "\" is too expensive for a text of " +
                         std::to_string(text.size()) + " bytes: " + reasonText(found),
                     "make the expression simpler");
}

} // namespace vltrace
