#include "formats/backup/finding.h"

std::string pathText(const BackupPlace& place)
{
    std::string text;
    for (const size_t position : {place.element, place.entry, place.item}) {
        if (position == BackupPlace::none)
            break;
        text += (text.empty() ? "" : "/") + std::to_string(position);
    }
    return text;
}

std::string placeText(const char* element, size_t index)
{
    return std::string(element) + "[" + std::to_string(index) + "]";
}

std::string countText(size_t count, const char* thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}
