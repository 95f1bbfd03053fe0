#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/textfile.h"

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

// QL is the user's quick link file in memory. It belongs to the operation that built it.
class QL
{
public:
    QL(); // loads the file named by the settings
    void add(const std::string& name, const std::string& target, const std::string& manifest,
             uint32_t profile, const std::string& manifestid, bool wocred);
    void flush();
    static bool removefile();

    std::vector<QLRecord> records;
    std::string krsurls;
    std::string krsdlgpaths;
    bool dirty = false;
    std::vector<QLRecord> filtered; // copies of the records that a backup carries
    bool tracing = true;
};

std::wstring qlfilename();
