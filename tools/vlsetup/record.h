#pragma once

#include <string>
#include <vector>

// The record of an installation: what vlsetup wrote and made, and what was there before. It is
// written before the first change, so that a killed installation can be taken back too.

// written_t is one file or registry value of ours.
struct written_t {
    std::wstring path; // full path, or the key below HKEY_LOCAL_MACHINE
    std::wstring name; // of a value
    // What we wrote, as fileContent and valueContent give it. Two while a new content takes an old
    // one's place; anything else there is somebody else's.
    std::vector<std::string> contents;
    // What was there before and comes back: the path where a file waits, or a value's content.
    std::string former;

    bool ours(const std::string& content) const;
};

struct record_t {
    std::vector<std::wstring> folders; // made by us, the outer ones first
    std::vector<std::wstring> keys;    // the same
    std::vector<written_t> files;
    std::vector<written_t> values;

    bool empty() const noexcept
    {
        return folders.empty() && keys.empty() && files.empty() && values.empty();
    }
};

// find gives the entry of a place, null if there is none.
written_t* find(std::vector<written_t>& entries, const std::wstring& path,
                const std::wstring& name = {});
const written_t* find(const std::vector<written_t>& entries, const std::wstring& path,
                      const std::wstring& name = {});

// readRecord gives an empty record if there is no such file.
//
// Errors: CToolError for one that is damaged or of a later version
record_t readRecord(const std::wstring& path);

// writeRecord replaces the file as a whole.
//
// Errors: CToolError, with the old one still in place
void writeRecord(const std::wstring& path, const record_t& record);
