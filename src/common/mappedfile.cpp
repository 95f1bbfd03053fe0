#include "common/mappedfile.h"

CMappedView mapForReading(HANDLE file) noexcept
{
    const CKernelHandle mapping(CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr));
    return CMappedView(mapping ? MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0) : nullptr);
}
