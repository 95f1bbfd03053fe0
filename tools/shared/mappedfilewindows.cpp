#include "common/scoped.h"
#include "shared/mappedfile.h"

#include <windows.h>

// The system refuses to cut a file that is mapped.
CMappedFile::CMappedFile(const std::filesystem::path& path) noexcept
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.get(), &size) ||
        size.QuadPart == 0)
        return;
    const CKernelHandle mapping(
        CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (const void* const view =
            mapping ? MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0) : nullptr)
        m_bytes = {static_cast<const uint8_t*>(view), static_cast<size_t>(size.QuadPart)};
}

CMappedFile::~CMappedFile()
{
    if (!m_bytes.empty())
        UnmapViewOfFile(m_bytes.data());
}
