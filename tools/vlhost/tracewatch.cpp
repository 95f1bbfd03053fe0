#include "tracewatch.h"

#include "common/scoped.h"
#include "common/text.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"

#include <tlhelp32.h>

#include <algorithm>

namespace {

constexpr DWORD lookInterval = 200; // milliseconds

std::wstring lower(std::wstring text)
{
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

// The names end with the session, a full stop, the process, and the extension.
DWORD processOf(const std::wstring& name)
{
    const size_t stamp = name.rfind(L"~~");
    const size_t dot = name.find(L'.', stamp == std::wstring::npos ? name.size() : stamp);
    return dot == std::wstring::npos ? 0 : std::wcstoul(name.c_str() + dot + 1, nullptr, 10);
}

// A tracer shares its file with readers and writers alone.
bool isOpen(const std::wstring& path)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    return !file && GetLastError() == ERROR_SHARING_VIOLATION;
}

bool hasModule(DWORD process, const std::wstring& moduleName)
{
    const CFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = snapshot && Module32FirstW(snapshot.get(), &entry); more;
         more = Module32NextW(snapshot.get(), &entry))
        if (lstrcmpiW(entry.szModule, moduleName.c_str()) == 0)
            return true;
    return false;
}

} // namespace

std::vector<traceFile_t> traceFilesIn(const std::wstring& folder)
{
    std::vector<traceFile_t> files;
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW((folder + L"*.trc3").c_str(), &entry));
    if (!search)
        return files;
    do {
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            continue;
        const std::wstring name = entry.cFileName;
        files.push_back({name, processOf(name),
                         uint64_t{entry.nFileSizeHigh} << 32 | entry.nFileSizeLow,
                         entry.ftLastWriteTime, isOpen(folder + name)});
    } while (FindNextFileW(search.get(), &entry));
    std::sort(files.begin(), files.end(), [](const traceFile_t& one, const traceFile_t& two) {
        return CompareFileTime(&one.modified, &two.modified) < 0;
    });
    return files;
}

std::vector<DWORD> processesWith(const std::wstring& moduleName)
{
    std::vector<DWORD> found;
    const CFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = snapshot && Process32FirstW(snapshot.get(), &entry); more;
         more = Process32NextW(snapshot.get(), &entry))
        if (entry.th32ProcessID != 0 && entry.th32ProcessID != GetCurrentProcessId() &&
            hasModule(entry.th32ProcessID, moduleName))
            found.push_back(entry.th32ProcessID);
    return found;
}

void checkWatchable(DWORD process, const std::wstring& moduleName)
{
    const std::string number = std::to_string(process);
    const CKernelHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
    if (!handle)
        throw CToolError("process " + number + " can't be watched: " + errorText(GetLastError()),
                         "nothing was switched; is the number right, and the process yours?");
    if (!hasModule(process, moduleName))
        throw CToolError("process " + number + " has not loaded " + utf8FromWide(moduleName),
                         "nothing was switched; a process follows once it has the plug-in");
}

followed_t waitUntilFollowed(DWORD process, const std::wstring& moduleName,
                             const std::wstring& folder, bool toFile,
                             std::chrono::steady_clock::time_point deadline)
{
    const CKernelHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
    if (!handle)
        return followed_t::ended;
    const std::wstring mark = L".x64." + lower(moduleName) + L"~~";
    const auto isItsFile = [&](const traceFile_t& file) {
        return file.open && file.process == process &&
               lower(file.name).find(mark) != std::wstring::npos;
    };
    for (;;) {
        const std::vector<traceFile_t> files = traceFilesIn(folder);
        if (std::any_of(files.begin(), files.end(), isItsFile) == toFile)
            return followed_t::yes;
        if (WaitForSingleObject(handle.get(), lookInterval) == WAIT_OBJECT_0)
            return followed_t::ended;
        if (std::chrono::steady_clock::now() >= deadline)
            return followed_t::no;
    }
}
