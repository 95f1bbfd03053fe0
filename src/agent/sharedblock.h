#pragma once

#include "common/mappedfile.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

// mappedBlock_t owns one named block of memory. It can be half made: handle set, view empty.
struct mappedBlock_t {
    CKernelHandle handle; // the mapping
    CMappedView view;     // the whole object from offset 0, writable; unmapped first
};

// createSharedBlock makes the named block, or joins the one that has the name already.
//
// name:    without Global\ or Local\ in front
// size:    bytes; ignored when joining, the first maker's size stays
// Returns: both fields empty on failure; view alone empty if the block couldn't be mapped
// Errors:  traced at level E with their status
// Source:  CreateFileMappingW on the paging file, MapViewOfFile
mappedBlock_t createSharedBlock(const std::wstring& name, uint32_t size);

// openSharedBlock opens a block that another process made. Returns and errors are as above, except
// that a missing block is traced as an error only the first time in a process.
mappedBlock_t openSharedBlock(const std::wstring& name);

// closeSharedBlock releases what there is of a block before its end, and empties both fields.
void closeSharedBlock(mappedBlock_t& block) noexcept;

// sharedBlockSize gives the number of bytes that may be written from a view's start: the object's
// size, rounded up to whole pages. 0 for a null view, and for one that isn't backed by memory.
size_t sharedBlockSize(const void* view) noexcept;

// openLinkSemaphore opens the named semaphore, or makes it with a count of 1 of 1.
//
// Returns: a handle with the rights to wait and to release; empty on failure
// Errors:  traced at level E with their status; the last error says why
CKernelHandle openLinkSemaphore(const std::wstring& name);
