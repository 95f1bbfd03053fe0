#include "files.h"

#include "common/text.h"
#include "shared/filesystem.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"
#include "storage/paths.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr DWORD pieceSize = 1u << 16;

// isEmptyFile knows it also of a file that another program holds.
bool isEmptyFile(const std::wstring& path)
{
    const auto now = fileAt(path);
    return now && now->size == 0;
}

} // namespace

std::wstring fileKey(const std::wstring& path)
{
    std::wstring full = fullPath(path);
    CharUpperBuffW(full.data(), static_cast<DWORD>(full.size()));
    return full;
}

std::optional<fileState_t> fileAt(const std::wstring& path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(longform(path).c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return std::nullopt;
    return fileState_t{data.dwFileAttributes,
                       uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow};
}

bool isThere(const std::wstring& path)
{
    return GetFileAttributesW(longform(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

CFilePieces::CFilePieces(const std::wstring& path)
    : m_file(CreateFileW(longform(path).c_str(), GENERIC_READ,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr)),
      m_piece(std::make_unique_for_overwrite<BYTE[]>(pieceSize))
{
    LARGE_INTEGER size{};
    if (!m_file || !GetFileSizeEx(m_file.get(), &size))
        m_error = GetLastError();
    m_size = static_cast<uint64_t>(size.QuadPart);
}

std::span<const BYTE> CFilePieces::Next()
{
    DWORD read = 0;
    if (m_error == 0 && !ReadFile(m_file.get(), m_piece.get(), pieceSize, &read, nullptr))
        m_error = GetLastError();
    return {m_piece.get(), m_error == 0 ? read : 0};
}

bool fileHolds(const std::wstring& path, std::span<const BYTE> bytes)
{
    CFilePieces file(path);
    if (file.Error() != 0)
        return bytes.empty() && isEmptyFile(path);
    if (file.Size() != bytes.size())
        return false;
    while (!bytes.empty()) {
        const auto piece = file.Next();
        if (piece.empty() || piece.size() > bytes.size() ||
            !std::equal(piece.begin(), piece.end(), bytes.begin()))
            return false;
        bytes = bytes.subspan(piece.size());
    }
    return true;
}

bool fileEquals(const std::wstring& one, const std::wstring& other)
{
    CFilePieces files[] = {CFilePieces(one), CFilePieces(other)};
    if (files[0].Error() != 0 || files[1].Error() != 0)
        return isEmptyFile(one) && isEmptyFile(other);
    if (files[0].Size() != files[1].Size())
        return false;
    for (uint64_t left = files[0].Size(); left > 0;) { // regular files fill each piece
        const auto piece = files[0].Next();
        const auto match = files[1].Next();
        if (piece.empty() || piece.size() > left ||
            !std::equal(piece.begin(), piece.end(), match.begin(), match.end()))
            return false;
        left -= piece.size();
    }
    return true;
}

void copyOver(const std::wstring& from, const std::wstring& to)
{
    std::error_code error = copyFile(longform(from), longform(to));
    if (error.value() == ERROR_PATH_NOT_FOUND) {
        std::error_code ignored; // the copy itself says what is wrong
        std::filesystem::create_directories(std::filesystem::path(to).parent_path(), ignored);
        error = copyFile(longform(from), longform(to));
    }
    if (error)
        throw CToolError("can't copy " + utf8FromWide(from) + " to " + utf8FromWide(to) + ": " +
                         errorText(static_cast<DWORD>(error.value())));
}

void settleFile(const std::wstring& path, DWORD attributes)
{
    const std::wstring name = longform(path);
    if (const std::error_code error = flushFile(name))
        throw CToolError("can't write " + utf8FromWide(path) + ": " + reasonOf(error));
    if (attributes != FILE_ATTRIBUTE_NORMAL)
        SetFileAttributesW(name.c_str(), attributes);
}
