#include "files.h"

#include "common/commandline.h"
#include "common/scoped.h"
#include "common/text.h"
#include "print.h"

namespace {

[[noreturn]] void failed(const char* what, const std::string& path, const std::string& hint = {})
{
    const DWORD error = GetLastError();
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
            if (GetLastError() != ERROR_BROKEN_PIPE)
                failed("can't read", path);
            read = 0;
        }
        bytes.resize(before + read);
        if (read == 0)
            return bytes;
    }
}

} // namespace

bytes_t readFile(const std::string& path)
{
    if (path == "-")
        return readAll(GetStdHandle(STD_INPUT_HANDLE), "standard input");
    const CFileHandle file(CreateFileW(wideFromUtf8(path).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        failed("can't open", path);
    return readAll(file.get(), path);
}

void writeFile(const std::string& path, const bytes_t& bytes, bool replace)
{
    const std::wstring target = wideFromUtf8(path);
    if (!replace && GetFileAttributesW(target.c_str()) != INVALID_FILE_ATTRIBUTES)
        throw CToolError(path + " exists already", "--force replaces it");
    const std::wstring unfinished = target + L".part";
    CFileHandle file(CreateFileW(unfinished.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        failed("can't write", path, "does the folder exist?");
    for (size_t done = 0; done < bytes.size();) {
        const auto step = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1u << 24));
        DWORD written = 0;
        if (!WriteFile(file.get(), bytes.data() + done, step, &written, nullptr) || written == 0) {
            const DWORD error = GetLastError();
            file.reset();
            DeleteFileW(unfinished.c_str());
            SetLastError(error);
            failed("can't write", path);
        }
        done += written;
    }
    file.reset();
    if (!MoveFileExW(unfinished.c_str(), target.c_str(), replace ? MOVEFILE_REPLACE_EXISTING : 0)) {
        const DWORD error = GetLastError();
        DeleteFileW(unfinished.c_str());
        SetLastError(error);
        failed("can't write", path);
    }
}
