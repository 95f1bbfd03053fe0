#pragma once

#include "common/scoped.h"

// CMappedView owns a view of a mapping, from its start.
struct mappedView {
    using value_type = void*;
    static void* empty() noexcept { return nullptr; }
    static void close(void* view) noexcept { UnmapViewOfFile(view); }
};
using CMappedView = CScoped<mappedView>;

// mapForReading maps a whole open file. The view alone keeps the mapping alive.
//
// Returns: empty on any failure, and for an empty file, which has no mapping
// Source:  CreateFileMappingW, MapViewOfFile
CMappedView mapForReading(HANDLE file) noexcept;
