#pragma once

#include "common/scoped.h"
#include "common/status.h"
#include "support/patchimport.h"

#include <windows.h>

#include <cstdint>
#include <string>

constexpr DWORD limit = 20000; // ms

// failing is what a patched call does that gives null or FALSE: it sets this error, if any.
inline DWORD failingError = 0;
inline uintptr_t WINAPI failing(...)
{
    if (failingError)
        SetLastError(failingError);
    return 0;
}

// win32 gives the front of an error record: "|E ", the status of a platform error, a blank.
inline std::wstring win32(DWORD error)
{
    return L"|E " + std::to_wstring(statusFromError(error)) + L' ';
}

// blockView_t views a named block that exists, from its start; bytes is null when there is none.
struct blockView_t {
    explicit blockView_t(const wchar_t* name) : handle(OpenFileMappingW(FILE_MAP_WRITE, 0, name)) {}
    ~blockView_t() { UnmapViewOfFile(bytes); }
    std::string text(size_t size) const { return bytes ? std::string(bytes, size) : "no block"; }

    CKernelHandle handle;
    char* bytes = static_cast<char*>(MapViewOfFile(handle.get(), FILE_MAP_WRITE, 0, 0, 0));
};
