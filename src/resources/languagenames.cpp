#include "resources/languagenames.h"

#include <algorithm>
#include <iterator>

namespace {

struct LanguageRow {
    LANGID language;
    const wchar_t* name;
};

constexpr LanguageRow languages[] = {
#include "resources/languagenames.inc" // made by generate/languagenames.cpp, in ascending order
};
static_assert(std::ranges::is_sorted(languages, {}, &LanguageRow::language));

} // namespace

std::wstring_view languageName(LANGID language) noexcept
{
    const auto row = std::ranges::lower_bound(languages, language, {}, &LanguageRow::language);
    if (row == std::end(languages) || row->language != language)
        return {};
    return row->name;
}
