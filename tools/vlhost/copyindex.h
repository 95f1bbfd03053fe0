#pragma once

#include "safetycopy.h"

#include <filesystem>

// The files of a safety copy's folder that say what it is: index.json and, later, finished.

// writeCopyIndex writes down what the copy knows. It is the last file to be written.
//
// Errors: CToolError, also for a name that UTF-8 can't hold
void writeCopyIndex(const std::filesystem::path& folder, const safetyCopy_t& copy);

// isIndexedCopy is true for a folder with an index.
bool isIndexedCopy(const std::filesystem::path& folder);

// readCopyIndex is the reverse, without the number. The sizes are those of the copied files; one
// that is missing makes the copy a damaged one.
//
// Errors: std::exception
safetyCopy_t readCopyIndex(const std::filesystem::path& folder);

// markFinished makes finished true for later readers. Errors: CToolError
void markFinished(const std::filesystem::path& folder);
