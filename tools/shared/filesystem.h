#pragma once

#include <filesystem>
#include <string>
#include <system_error>

// What the tools need of the file system, with long and any UTF-8 names on all platforms:
// filesystemwindows.cpp and filesystemposix.cpp; what needs no platform is in filesystem.cpp.

// pathOf gives the path of a UTF-8 name. On Windows it is the full one, in the form that may be
// longer than MAX_PATH.
std::filesystem::path pathOf(const std::string& name);

enum class entryKind_t {
    missing,
    file,
    folder,
    other, // a device, a pipe: what is written there replaces nothing
};
// entryKind looks at what a path leads to, through links. What can't be looked at counts as missing
// or, if it was refused, as a file, so that opening it reports the reason.
entryKind_t entryKind(const std::filesystem::path& path) noexcept;

// isLink is true for a symbolic link, or whatever else leads to another place.
bool isLink(const std::filesystem::path& path) noexcept;

// isSameFile is true for two paths of one existing file.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) noexcept;

// isStandardInput is true for the path of the file that standard input was redirected from.
bool isStandardInput(const std::filesystem::path& path) noexcept;

// createNewFile makes an empty file; an existing one is an error.
std::error_code createNewFile(const std::filesystem::path& path) noexcept;

// flushFile waits until the file's bytes are on the disk.
std::error_code flushFile(const std::filesystem::path& path) noexcept;

// moveFile renames a file within its folder.
// replace: whether an existing target is replaced; else it is an error
std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to,
                         bool replace) noexcept;

// removeFile removes a file, read-only or not; one that isn't there is no error.
std::error_code removeFile(const std::filesystem::path& path) noexcept;

// reasonOf gives the reason for a failed file operation as a clause. UTF-8
std::string reasonOf(std::error_code error);
