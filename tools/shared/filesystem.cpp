#include "shared/filesystem.h"

#include "formats/text/printable.h"

#ifdef _WIN32
#include "common/scoped.h"
#include "common/text.h"

#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

#ifdef _WIN32

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

} // namespace

fs::path pathOf(const std::string& name)
{
    const std::wstring wide = wideFromUtf8(name);
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.empty() || full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\"))
        return full.empty() ? wide : full;
    if (full.starts_with(L"\\\\"))
        return L"\\\\?\\UNC" + full.substr(1);
    return L"\\\\?\\" + full;
}

EntryKind entryKind(const fs::path& path) noexcept
{
    if (path.native().starts_with(L"\\\\.\\"))
        return EntryKind::other;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() == ERROR_ACCESS_DENIED ? EntryKind::file : EntryKind::missing;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? EntryKind::folder : EntryKind::file;
}

bool isSameFile(const fs::path& one, const fs::path& other) noexcept
{
    BY_HANDLE_FILE_INFORMATION first{};
    BY_HANDLE_FILE_INFORMATION second{};
    const CFileHandle files[] = {openEntry(one, 0), openEntry(other, 0)};
    return files[0] && files[1] && GetFileInformationByHandle(files[0].get(), &first) &&
           GetFileInformationByHandle(files[1].get(), &second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
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

void removeFile(const fs::path& path) noexcept
{
    DeleteFileW(path.c_str());
}

#else

namespace {

std::error_code lastError() noexcept
{
    return {errno, std::generic_category()};
}

} // namespace

fs::path pathOf(const std::string& name)
{
    return {name};
}

EntryKind entryKind(const fs::path& path) noexcept
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    switch (status.type()) {
    case fs::file_type::not_found:
        return EntryKind::missing;
    case fs::file_type::directory:
        return EntryKind::folder;
    case fs::file_type::regular:
        return EntryKind::file;
    case fs::file_type::none: // refused, or not even a name
        return error == std::errc::permission_denied ? EntryKind::file : EntryKind::missing;
    default:
        return EntryKind::other;
    }
}

bool isSameFile(const fs::path& one, const fs::path& other) noexcept
{
    std::error_code error;
    return fs::equivalent(one, other, error);
}

std::error_code createNewFile(const fs::path& path) noexcept
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        return lastError();
    close(file);
    return {};
}

std::error_code flushFile(const fs::path& path) noexcept
{
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return lastError();
    const std::error_code error = fsync(file) == 0 ? std::error_code() : lastError();
    close(file);
    return error;
}

// The new file gets the old one's permissions, which may shut others out. A link keeps leading to
// it.
std::error_code moveFile(const fs::path& from, const fs::path& to, bool replace) noexcept
{
    std::error_code error;
    const fs::file_status former = fs::status(to, error);
    if (!fs::exists(former)) {
        fs::rename(from, to, error);
        return error;
    }
    if (!replace)
        return std::make_error_code(std::errc::file_exists);
    fs::path target = fs::canonical(to, error);
    if (!error)
        fs::permissions(from, former.permissions(), error);
    if (!error)
        fs::rename(from, target, error);
    return error;
}

void removeFile(const fs::path& path) noexcept
{
    std::error_code ignored;
    fs::remove(path, ignored);
}

#endif

std::string reasonOf(std::error_code error)
{
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return "permission denied";
    if (error == std::errc::no_such_file_or_directory)
        return "the folder does not exist";
    if (error == std::errc::no_space_on_device)
        return "the disk is full";
    if (error == std::errc::file_exists)
        return "it exists already";
    return printable(error.message());
}
