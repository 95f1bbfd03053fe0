#include "files.h"

#include <filesystem>

#include "common/commandline.h"
#include "common/scoped.h"
#include "common/text.h"
#include "print.h"
#include "storage/paths.h"

namespace {

[[noreturn]] void failed(const char* what, const std::string& path, DWORD error,
                         const std::string& hint = {})
{
    throw CToolError(std::string(what) + ' ' + path + ": " + errorText(error), hint);
}

bytes_t readAll(HANDLE file, const std::string& path)
{
    bytes_t bytes;
    for (;;) {
        constexpr DWORD step = 1u << 20;
        const size_t before = bytes.size();
        bytes.resize(before + step);
        DWORD read = 0;
        if (!ReadFile(file, bytes.data() + before, step, &read, nullptr)) {
            if (GetLastError() != ERROR_BROKEN_PIPE) // the writer's end of a pipe
                failed("can't read", path, GetLastError());
            read = 0;
        }
        bytes.resize(before + read);
        if (read == 0)
            return bytes;
    }
}

std::wstring nativePath(const std::string& path)
{
    const std::wstring wide = wideFromUtf8(path);
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return longform(full.empty() ? wide : full);
}

// CUnfinished is a new file beside its target that goes again unless it was moved there.
class CUnfinished
{
public:
    CUnfinished(const std::wstring& target, const std::string& path)
        : m_path(path),
          m_name(target + L"." + std::to_wstring(GetCurrentProcessId()) + L".part"),
          m_file(CreateFileW(m_name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                             FILE_ATTRIBUTE_NORMAL, nullptr))
    {
        if (!m_file)
            failed("can't write", path, GetLastError(),
                   "is the folder there, and may you write to it?");
    }
    ~CUnfinished()
    {
        m_file.reset();
        if (!m_moved)
            DeleteFileW(m_name.c_str());
    }
    CUnfinished(const CUnfinished&) = delete;
    CUnfinished& operator=(const CUnfinished&) = delete;

    void Write(const bytes_t& bytes)
    {
        for (size_t done = 0; done < bytes.size();) {
            const auto step = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1u << 24));
            DWORD written = 0;
            if (!WriteFile(m_file.get(), bytes.data() + done, step, &written, nullptr) ||
                written == 0)
                failed("can't write", m_path, GetLastError(), "is the disk full?");
            done += written;
        }
        FlushFileBuffers(m_file.get());
    }

    void MoveTo(const std::wstring& target, bool replace)
    {
        m_file.reset();
        m_moved = MoveFileExW(m_name.c_str(), target.c_str(),
                              replace ? MOVEFILE_REPLACE_EXISTING : 0) != 0;
        if (!m_moved)
            failed("can't write", m_path, GetLastError());
    }

private:
    const std::string& m_path;
    const std::wstring m_name;
    CFileHandle m_file;
    bool m_moved = false;
};

} // namespace

bytes_t readFile(const std::string& path)
{
    if (path == "-")
        return readAll(GetStdHandle(STD_INPUT_HANDLE), "standard input");
    const CFileHandle file(CreateFileW(nativePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        failed("can't open", path, GetLastError(), "is the name spelt right?");
    return readAll(file.get(), path);
}

void refuseExisting(const std::string& path, bool replace)
{
    if (!replace && isThere(nativePath(path)))
        throw CToolError(path + " exists already", "--force replaces it");
}

void writeFile(const std::string& path, const bytes_t& bytes, bool replace)
{
    refuseExisting(path, replace);
    const std::wstring target = nativePath(path);
    CUnfinished file(target, path);
    file.Write(bytes);
    file.MoveTo(target, replace);
}

void copyFile(const std::wstring& from, const std::wstring& to)
{
    const std::wstring target = longform(to);
    std::error_code ignored; // the copy itself tells what is wrong
    std::filesystem::create_directories(std::filesystem::path(to).parent_path(), ignored);
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL); // of a target that is read-only
    if (!CopyFileW(longform(from).c_str(), target.c_str(), FALSE))
        failed("can't copy to", utf8FromWide(to), GetLastError());
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);
}

bool isThere(const std::wstring& path)
{
    return GetFileAttributesW(longform(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::wstring besideThisProgram(const wchar_t* name)
{
    std::wstring path(32768, L'\0'); // the longest that there is
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    path.resize(path.find_last_of(L'\\') + 1);
    return path + name;
}
