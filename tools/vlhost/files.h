#pragma once

#include "common/scoped.h"

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

using bytes_t = std::vector<BYTE>;

// The user's files as a backup and a restore use them. Paths may be longer than MAX_PATH, and need
// not be full.

// fileKey is equal for two names of the same file: the full path in upper case.
std::wstring fileKey(const std::wstring& path);

// fileState_t is what a look at a file says.
struct fileState_t {
    DWORD attributes = 0;
    uint64_t size = 0; // bytes
};
// fileAt gives nothing if there is no file, or a folder.
std::optional<fileState_t> fileAt(const std::wstring& path);

// isThere is true for a file or folder.
bool isThere(const std::wstring& path);

// CFilePieces reads a file piece by piece, whatever others do with it.
class CFilePieces
{
public:
    explicit CFilePieces(const std::wstring& path);

    uint64_t Size() const noexcept { return m_size; } // bytes, when it was opened
    // Next gives the next bytes, on loan until the next call; none at the end and after an error.
    std::span<const BYTE> Next();
    DWORD Error() const noexcept { return m_error; } // of the platform; 0 for none

private:
    CFileHandle m_file;
    uint64_t m_size = 0;
    DWORD m_error = 0;
    std::unique_ptr<BYTE[]> m_piece;
};

// fileHolds is true if the file is there and has these bytes, no more and no less. fileEquals is
// true if both are there and have the same.
bool fileHolds(const std::wstring& path, std::span<const BYTE> bytes);
bool fileEquals(const std::wstring& one, const std::wstring& other);

// copyOver is copyFile, which makes the folder if there is none. settleFile waits until a file's
// bytes are on the disk, and gives it its attributes. Many files are copied first and then settled:
// the first wait covers most of them.
//
// Errors: CToolError
void copyOver(const std::wstring& from, const std::wstring& to);
void settleFile(const std::wstring& path, DWORD attributes);
