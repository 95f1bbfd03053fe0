#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <utility>

// CMappedFile is the content of a file, mapped to be read. mappedfilewindows.cpp and mappedfileposix.cpp. A file that
// another program cuts meanwhile ends the process, with a line and the status of a failure: its pages are gone.
class CMappedFile
{
public:
    CMappedFile() noexcept = default;
    // Empty if the file can't be mapped: it is a device or a pipe, it is empty, or it can't be opened.
    explicit CMappedFile(const std::filesystem::path& path) noexcept;
    ~CMappedFile();
    CMappedFile(CMappedFile&& other) noexcept : m_bytes(std::exchange(other.m_bytes, {})) {}
    CMappedFile& operator=(CMappedFile&& other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }

    std::span<const uint8_t> Bytes() const noexcept { return m_bytes; }

private:
    std::span<const uint8_t> m_bytes;
};
