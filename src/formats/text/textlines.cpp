#include "formats/text/textlines.h"

void splitlines(std::string_view text, TextLines& lines)
{
    constexpr std::string_view lineEnds = "\r\n";
    lines.clear();
    size_t start = text.find_first_not_of(lineEnds);
    while (start != std::string_view::npos) {
        const size_t end = text.find_first_of(lineEnds, start);
        lines.emplace_back(text.substr(start, end - start)); // no end: all that is left
        start = text.find_first_not_of(lineEnds, end);
    }
}
