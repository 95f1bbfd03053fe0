#include "storage/paths.h"
#include "tracecore/tracer.h"

#include <windows.h>
#include <shlobj.h>

namespace {

constexpr wchar_t rootSuffix[] = LR"(Veltrano\KRS\)";
constexpr wchar_t templatesSuffix[] = LR"(Veltrano\KRS\Templates\)";

std::wstring appdata_subdir(const wchar_t* suffix)
{
    const std::wstring folder = envvalue(L"APPDATA");
    if (folder.empty()) {
        tracecore::traceLastError(L"failed to get appdata");
        return {};
    }
    return unifyslashes(addslash(folder)) + suffix;
}

// The shell's library is left loaded: the next look-up finds it by its name.
auto shellfolderpath() noexcept
{
    HMODULE shell = GetModuleHandleW(L"SHFOLDER.DLL");
    if (!shell)
        shell = LoadLibraryW(L"SHFOLDER.DLL");
    void* function =
        shell ? reinterpret_cast<void*>(GetProcAddress(shell, "SHGetFolderPathW")) : nullptr;
    return reinterpret_cast<decltype(&SHGetFolderPathW)>(function);
}

} // namespace

std::wstring envvalue(const std::wstring& name)
{
    wchar_t value[260] = {};
    const DWORD length = GetEnvironmentVariableW(name.c_str(), value, 260);
    // A value that does not fit reads as empty.
    return length < 260 ? std::wstring(value) : std::wstring();
}

std::wstring appdata_templatesdir()
{
    return appdata_subdir(templatesSuffix);
}

std::wstring appdata_rootdir()
{
    return appdata_subdir(rootSuffix);
}

std::wstring localappdata_dir()
{
    std::wstring folder = envvalue(L"LOCALAPPDATA");
    if (folder.empty()) {
        const auto folderpath = shellfolderpath();
        if (!folderpath) {
            tracecore::traceLastError(L"no SHGetFolderPath_");
            return {};
        }
        wchar_t path[MAX_PATH + 1] = {};
        const int localData = CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE;
        if (SUCCEEDED(folderpath(nullptr, localData, nullptr, 0, path)))
            folder = path;
        if (folder.empty()) {
            tracecore::traceLastError(L"failed to get localappdata");
            return {};
        }
    }
    return unifyslashes(addslash(folder));
}

std::wstring localappdata_rootdir()
{
    const std::wstring folder = localappdata_dir();
    return folder.empty() ? folder : folder + rootSuffix;
}

std::wstring sysdir()
{
    wchar_t path[MAX_PATH] = {};
    GetSystemDirectoryW(path, MAX_PATH);
    return addslash(path);
}
