#include "shared/windowsfiles.h"

#include <windows.h>

#include <filesystem>

namespace {

constexpr DWORD specialAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
constexpr size_t longestPath = 32768;

// makeNormal is true if the file had special attributes and has none now.
bool makeNormal(const std::wstring& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & specialAttributes) &&
           SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

} // namespace

std::wstring fullPath(const std::wstring& path)
{
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

std::error_code copyFile(const std::wstring& from, const std::wstring& to) noexcept
{
    BOOL copied = CopyFileW(from.c_str(), to.c_str(), FALSE);
    const DWORD error = GetLastError();
    if (!copied && error == ERROR_ACCESS_DENIED && makeNormal(to))
        copied = CopyFileW(from.c_str(), to.c_str(), FALSE);
    if (!copied)
        return {static_cast<int>(error), std::system_category()};
    makeNormal(to);
    return {};
}

std::wstring programFolder()
{
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return std::filesystem::path(path).parent_path();
}
