#include "resources/languagenames.h"

#include <algorithm>
#include <iterator>

namespace {

struct languageRow_t {
    LANGID language;
    const wchar_t* name;
};

constexpr languageRow_t languages[] = {
#include "resources/languagenames.inc" // made by generate/languagenames.cpp, in ascending order
};
static_assert(std::ranges::is_sorted(languages, {}, &languageRow_t::language));

} // namespace

std::wstring_view languageName(LANGID language) noexcept
{
    const auto row = std::ranges::lower_bound(languages, language, {}, &languageRow_t::language);
    if (row == std::end(languages) || row->language != language)
        return {};
    return row->name;
}
