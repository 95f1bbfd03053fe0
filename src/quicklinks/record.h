#pragma once

#include <cstdint>
#include <string>

// QLRecord is one quick link. All strings are UTF-8.
struct QLRecord {
    uint32_t kind = 0; // 0 nothing yet, 1 a web link, 2 a dialog link
    std::string url;
    std::string dlgpath;
    std::string manifest; // as stored: may hold %appdata%, may start with the alien mark
    std::string manifestid;
    uint32_t profile = 0;
    int32_t index = -1; // position after a load; -1 in a fresh record
    std::string name;
    bool wocred = false;
};
