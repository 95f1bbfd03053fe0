#include "common/scoped.h"
#include "common/text.h"
#include "shared/filesystem.h"
#include "shared/windowsfiles.h"

#include <windows.h>

namespace fs = std::filesystem;

namespace {

std::error_code lastError() noexcept
{
    return {static_cast<int>(GetLastError()), std::system_category()};
}

// openEntry opens a file or folder without getting in anybody's way.
CFileHandle openEntry(const fs::path& path, DWORD access) noexcept
{
    return CFileHandle(CreateFileW(path.c_str(), access,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

bool areSame(HANDLE one, HANDLE other) noexcept
{
    BY_HANDLE_FILE_INFORMATION first{};
    BY_HANDLE_FILE_INFORMATION second{};
    return one && other && GetFileInformationByHandle(one, &first) &&
           GetFileInformationByHandle(other, &second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

} // namespace

fs::path pathOf(const std::string& name)
{
    const std::wstring wide = wideFromUtf8(name);
    const std::wstring full = fullPath(wide);
    if (full.empty() || full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\"))
        return full.empty() ? wide : full;
    if (full.starts_with(L"\\\\"))
        return L"\\\\?\\UNC" + full.substr(1);
    return L"\\\\?\\" + full;
}

entryKind_t entryKind(const fs::path& path) noexcept
{
    if (path.native().starts_with(L"\\\\.\\"))
        return entryKind_t::other;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() == ERROR_ACCESS_DENIED ? entryKind_t::file : entryKind_t::missing;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? entryKind_t::folder : entryKind_t::file;
}

bool isLink(const fs::path& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

bool isSameFile(const fs::path& one, const fs::path& other) noexcept
{
    return areSame(openEntry(one, 0).get(), openEntry(other, 0).get());
}

bool isStandardInput(const fs::path& path) noexcept
{
    return areSame(openEntry(path, 0).get(), GetStdHandle(STD_INPUT_HANDLE));
}

std::error_code createNewFile(const fs::path& path) noexcept
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? std::error_code() : lastError();
}

std::error_code flushFile(const fs::path& path) noexcept
{
    const CFileHandle file = openEntry(path, GENERIC_WRITE);
    return file && FlushFileBuffers(file.get()) ? std::error_code() : lastError();
}

std::error_code moveFile(const fs::path& from, const fs::path& to, bool replace) noexcept
{
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0U);
    return MoveFileExW(from.c_str(), to.c_str(), flags) ? std::error_code() : lastError();
}

std::error_code removeFile(const fs::path& path) noexcept
{
    if (DeleteFileW(path.c_str()))
        return {};
    std::error_code error = lastError();
    if (error.value() == ERROR_FILE_NOT_FOUND || error.value() == ERROR_PATH_NOT_FOUND)
        return {};
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY))
        return error;
    SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    if (DeleteFileW(path.c_str()))
        return {};
    error = lastError();
    SetFileAttributesW(path.c_str(), attributes);
    return error;
}
