#include "formats/backup/finding.h"

std::string placeText(const char* element, size_t index)
{
    return std::string(element) + "[" + std::to_string(index) + "]";
}

std::string countText(size_t count, const char* thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}
