#pragma once

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

// unusualOctets gives octets, none of them zero, that stand nowhere else.
inline std::string unusualOctets(size_t size)
{
    std::string made(size, ' ');
    for (size_t i = 0; i < size; ++i)
        made[i] = static_cast<char>(i * 37 % 89 + 0x21);
    return made;
}

// copiesOf counts in all memory of the process that can be written.
inline size_t copiesOf(const std::string& text)
{
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at += region.RegionSize) {
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE)
            continue;
        const char* const end = at + region.RegionSize - text.size();
        for (const char* found = at; found < end; ++found) {
            found = static_cast<const char*>(
                std::memchr(found, text[0], static_cast<size_t>(end - found)));
            if (!found)
                break;
            count += std::equal(text.begin(), text.end(), found);
        }
    }
    return count;
}
