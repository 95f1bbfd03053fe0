#include "plugin/cleanup.h"

#include "common/osversion.h"
#include "common/registry.h"
#include "common/scoped.h"
#include "common/status.h"
#include "tracecore/tracer.h"

#include <shlwapi.h>

#include <string>

using tracecore::traceFormat;
using tracecore::traceIfFailed;
using tracecore::traceScope_t;

namespace {

constexpr WCHAR byteOrderMark = 0xFEFF;
constexpr DWORD folderLength = 260;

// installationFolder reads the product's folder into a zeroed buffer, or raises the failure.
void installationFolder(wchar_t (&folder)[folderLength])
{
    const osVersion_t version = readOsVersion();
    const REGSAM view = version.isNt() && version.major >= 6 ? KEY_WOW64_64KEY : 0;
    CRegistryKey key;
    LSTATUS result =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano", 0, KEY_READ | view, key.put());
    if (result == ERROR_SUCCESS)
        result = queryText(key.get(), L"VeltranoPath", folder, noBytes_t::haveNoEnd);
    if (result != ERROR_SUCCESS)
        raiseStatus(HRESULT_FROM_WIN32(result));
}

CFileHandle openFile(const wchar_t* path, DWORD access, DWORD disposition)
{
    CFileHandle file(
        CreateFileW(path, access, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        raiseLastError();
    return file;
}

void write(const CFileHandle& file, const void* bytes, size_t size)
{
    DWORD written = 0;
    if (!WriteFile(file.get(), bytes, static_cast<DWORD>(size), &written, nullptr))
        raiseLastError();
}

bool hasByteOrderMark(const CFileHandle& file)
{
    WCHAR mark = 0;
    DWORD read = 0;
    return ReadFile(file.get(), &mark, sizeof mark, &read, nullptr) && read == sizeof mark &&
           mark == byteOrderMark;
}

std::wstring composeLine(const wchar_t* kind, const wchar_t* path, uint32_t flags,
                         const wchar_t* name)
{
    std::wstring line = std::wstring(kind) + L'\t' + path + L'\t' + std::to_wstring(flags);
    if (name)
        line += L'\t' + std::wstring(*name ? name : L" ");
    return line + L"\r\n";
}

void appendLine(const wchar_t* kind, const wchar_t* path, uint32_t flags, const wchar_t* name)
{
    if (!kind || !*kind || !path || !*path)
        raiseStatus(E_INVALIDARG);
    wchar_t filePath[folderLength] = {};
    installationFolder(filePath);
    PathAppendW(filePath, L"Cleanup.txt");

    CFileHandle file = openFile(filePath, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
    if (!hasByteOrderMark(file)) {
        file.reset();
        file = openFile(filePath, GENERIC_WRITE, CREATE_ALWAYS);
        write(file, &byteOrderMark, sizeof byteOrderMark);
    }
    traceFormat(0, "FilePath = %ls", filePath);
    SetLastError(ERROR_SUCCESS);
    SetFilePointer(file.get(), 0, nullptr, FILE_END);
    const DWORD error = GetLastError();
    if (FAILED(statusFromError(error)))
        raiseError(error);
    const std::wstring line = composeLine(kind, path, flags, name);
    traceFormat(0, "accum = %ls", line.c_str());
    write(file, line.data(), line.size() * sizeof(wchar_t));
}

} // namespace

HRESULT AddCleanupLine(const wchar_t* kind, const wchar_t* path, uint32_t flags,
                       const wchar_t* name)
{
    const traceScope_t scope("AddCleanupLine");
    HRESULT result = S_OK;
    try {
        appendLine(kind, path, flags, name);
    } catch (const _com_error& error) {
        result = error.Error();
    } catch (...) {
        result = E_UNEXPECTED;
    }
    traceIfFailed("", result);
    return result;
}
