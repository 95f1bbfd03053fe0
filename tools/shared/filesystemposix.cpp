#include "shared/filesystem.h"

#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

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

entryKind_t entryKind(const fs::path& path) noexcept
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    switch (status.type()) {
    case fs::file_type::not_found:
        return entryKind_t::missing;
    case fs::file_type::directory:
        return entryKind_t::folder;
    case fs::file_type::regular:
        return entryKind_t::file;
    case fs::file_type::none: // refused, or not even a name
        return error == std::errc::permission_denied ? entryKind_t::file : entryKind_t::missing;
    default:
        return entryKind_t::other;
    }
}

bool isLink(const fs::path& path) noexcept
{
    std::error_code error;
    return fs::is_symlink(path, error);
}

bool isSameFile(const fs::path& one, const fs::path& other) noexcept
{
    std::error_code error;
    return fs::equivalent(one, other, error);
}

bool isStandardInput(const fs::path& path) noexcept
{
    return isSameFile(path, "/dev/stdin");
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

std::error_code removeFile(const fs::path& path) noexcept
{
    std::error_code error;
    fs::remove(path, error);
    return error;
}
