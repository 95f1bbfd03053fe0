#pragma once

#include "common/scoped.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// journalLine_t builds one JSON object; it begins with the time and the name of the event, if any.
class journalLine_t
{
public:
    journalLine_t();
    explicit journalLine_t(std::string_view event);

    journalLine_t& number(std::string_view key, uint64_t value);
    journalLine_t& flag(std::string_view key, bool value);
    // value: UTF-8; bytes that aren't become the replacement character
    journalLine_t& text(std::string_view key, std::string_view value);
    journalLine_t& texts(std::string_view key, const std::vector<std::wstring>& values);

    std::string finished() const { return m_json + "}\n"; }

private:
    std::string& member(std::string_view key); // where its value is to be written

    std::string m_json;
};

// journal_t appends lines to a file that others may read meanwhile. Without a file it keeps
// nothing. Any thread may write: each line is one call of the system.
class journal_t
{
public:
    bool open(const std::wstring& path); // false with the last error set
    void write(const journalLine_t& line) const;

private:
    CFileHandle m_file;
};
