#include "shared/exitstatus.h"
#include "shared/mappedfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string_view>

namespace {

// What a signal handler may do, and no more.
void endForLostPage(int)
{
    constexpr std::string_view line = "the input became shorter while it was read (try again)\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
    _exit(exitStatus::failed);
}

} // namespace

CMappedFile::CMappedFile(const std::filesystem::path& path) noexcept
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return;
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
        const auto size = static_cast<size_t>(status.st_size);
        void* const view = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        if (view != MAP_FAILED) {
            m_bytes = {static_cast<const uint8_t*>(view), size};
            std::signal(SIGBUS, endForLostPage);
        }
    }
    close(file);
}

CMappedFile::~CMappedFile()
{
    if (!m_bytes.empty())
        munmap(const_cast<uint8_t*>(m_bytes.data()), m_bytes.size());
}
