#pragma once

#include <span>
#include <sstream>
#include <string>

// CZipArchive makes a ZIP archive in memory.
//
// Errors: CToolError, of every operation
class CZipArchive
{
public:
    CZipArchive();
    ~CZipArchive();
    CZipArchive(const CZipArchive&) = delete;
    CZipArchive& operator=(const CZipArchive&) = delete;

    // name: UTF-8, with slashes
    void Add(const std::string& name, const std::string& content);

    // Finish gives the whole archive; nothing can be added after it.
    std::string Finish();

private:
    std::stringstream m_bytes{std::ios::in | std::ios::out | std::ios::binary};
    void* m_writer = nullptr; // of the library
};
